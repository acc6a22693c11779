#pragma once

#include <cstddef>
#include <span>

namespace vxr::importing {

/// Sends a message of `size` bytes and descriptors along with it. False when the other side has gone.
bool sendMessage(int socket, const void* message, std::size_t size, std::span<const int> descriptors);

/// Receives a message of exactly `size` bytes; descriptors that did not come are -1. False at the end, or
/// when the message is another one; then nothing stays open.
bool receiveMessage(int socket, void* message, std::size_t size, std::span<int> descriptors);

} // namespace vxr::importing
