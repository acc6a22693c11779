#include "Container.h"

#include "ZipSalvage.h"

#include <zip.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace app {

namespace {

zip_t* archiveOf(void* handle) { return static_cast<zip_t*>(handle); }

[[noreturn]] void fail(zip_error_t& error)
{
    const std::string message = zip_error_strerror(&error);
    zip_error_fini(&error);
    throw DocumentFileError(message);
}

/// Control characters and what UTF-8 can't be.
bool isText(std::string_view name)
{
    for (std::size_t i = 0; i < name.size();) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const std::size_t length = byte < 0x80 ? 1
            : byte >= 0xc2 && byte < 0xe0      ? 2
            : byte >= 0xe0 && byte < 0xf0      ? 3
            : byte >= 0xf0 && byte < 0xf5      ? 4
                                               : 0;
        if (byte < 0x20 || byte == 0x7f || length == 0 || i + length > name.size())
            return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(name[i + k]) & 0xc0) != 0x80)
                return false;
        }
        i += length;
    }
    return true;
}

/// For messages: a hostile name could steer a terminal.
std::string shown(std::string_view name)
{
    std::string result;
    for (char c : name.substr(0, 60))
        result += static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) >= 0x7f ? '?' : c;
    return result;
}

} // namespace

bool isSafeEntryName(std::string_view name)
{
    if (name.empty() || name.size() > 1000 || !isText(name) || name.find_first_of("\\:") != name.npos)
        return false;
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t end = std::min(name.find('/', at), name.size());
        const std::string_view part = name.substr(at, end - at);
        if (part.empty() || part == "." || part == "..")
            return false;
        at = end + 1;
    }
    return true;
}

ContainerReader::ContainerReader(const std::string& path, const ContainerLimits& limits)
    : mLimits(limits)
{
    int code = 0;
    if (zip_t* archive = zip_open(path.c_str(), ZIP_RDONLY, &code)) {
        open(archive);
        return;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file || code == ZIP_ER_OPEN || code == ZIP_ER_NOENT) {
        zip_error_t error;
        zip_error_init_with_code(&error, code);
        fail(error);
    }
    std::string bytes;
    std::vector<char> block(1 << 20);
    while (bytes.size() <= mLimits.salvagedBytes && file) {
        file.read(block.data(), static_cast<std::streamsize>(block.size()));
        bytes.append(block.data(), static_cast<std::size_t>(file.gcount()));
    }
    salvage(bytes);
}

std::unique_ptr<ContainerReader> ContainerReader::fromBytes(std::string bytes, const ContainerLimits& limits)
{
    std::unique_ptr<ContainerReader> reader(new ContainerReader);
    reader->mLimits = limits;
    reader->mBytes = std::move(bytes);
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(reader->mBytes.data(), reader->mBytes.size(), 0, &error);
    if (!source)
        fail(error);
    zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, &error);
    zip_error_fini(&error);
    if (archive) {
        reader->open(archive);
    } else {
        zip_source_free(source);
        reader->salvage(reader->mBytes);
    }
    return reader;
}

ContainerReader::~ContainerReader()
{
    if (mArchive)
        zip_discard(archiveOf(mArchive));
}

bool ContainerReader::admit(const std::string& name)
{
    const char* trouble = !isSafeEntryName(name) ? "a name that no entry may have"
        : mEntries.count(name)                   ? "a second entry of that name"
                                                 : nullptr;
    constexpr std::size_t troubleLimit = 1000;
    if (trouble && mTroubles.size() < troubleLimit)
        mTroubles.push_back("'" + shown(name) + "' is left out: " + trouble);
    return !trouble;
}

void ContainerReader::open(void* archive)
{
    mArchive = archive;
    const zip_int64_t count = zip_get_num_entries(archiveOf(archive), 0);
    if (count < 0 || static_cast<std::size_t>(count) > mLimits.entries)
        throw DocumentFileError("there are more than " + std::to_string(mLimits.entries) + " entries");
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t info;
        if (zip_stat_index(archiveOf(archive), static_cast<zip_uint64_t>(i), ZIP_FL_ENC_RAW, &info) != 0
            || !(info.valid & ZIP_STAT_NAME)) {
            mTroubles.push_back("entry " + std::to_string(i) + " is left out: it has no name");
            continue;
        }
        const std::string name = info.name;
        if (name.ends_with('/') && isSafeEntryName(name.substr(0, name.size() - 1)))
            continue; // a folder, as some programs add them
        if (!admit(name))
            continue;
        if ((info.valid & ZIP_STAT_ENCRYPTION_METHOD) && info.encryption_method != ZIP_EM_NONE) {
            mTroubles.push_back("'" + shown(name) + "' is left out: it is encrypted");
            continue;
        }
        mNames.push_back(name);
        mEntries[name] = { i, info.size, info.crc, {} };
    }
}

void ContainerReader::salvage(std::string_view bytes)
{
    std::vector<SalvagedEntry> found = salvageZip(bytes, mLimits);
    for (SalvagedEntry& entry : found) {
        if (!admit(entry.name))
            continue;
        mNames.push_back(entry.name);
        const std::uint64_t size = entry.bytes.size();
        mEntries[entry.name] = { -1, size, entry.checksum, std::move(entry.bytes) };
    }
    if (mNames.empty())
        throw DocumentFileError("this is no document, or nothing of it is left");
    mTroubles.push_back("the list of contents is damaged; " + std::to_string(mNames.size())
        + " entries were found without it");
}

std::pair<std::uint64_t, std::uint32_t> ContainerReader::sizeAndChecksum(const std::string& name) const
{
    const auto found = mEntries.find(name);
    return found == mEntries.end() ? std::pair<std::uint64_t, std::uint32_t>()
                                   : std::pair(found->second.size, found->second.checksum);
}

std::string ContainerReader::read(const std::string& name) const
{
    const auto found = mEntries.find(name);
    if (found == mEntries.end())
        throw DocumentFileError("'" + shown(name) + "' is missing");
    const Entry& entry = found->second;
    if (entry.index < 0)
        return entry.bytes;
    const auto refuse = [&](const std::string& reason) -> DocumentFileError {
        return DocumentFileError("'" + shown(name) + "': " + reason);
    };
    const std::string tooLarge = "larger than " + std::to_string(mLimits.entryBytes) + " bytes";
    if (entry.size > mLimits.entryBytes)
        throw refuse(tooLarge);
    zip_file_t* file
        = zip_fopen_index(archiveOf(mArchive), static_cast<zip_uint64_t>(entry.index), ZIP_FL_ENC_RAW);
    if (!file)
        throw refuse(zip_strerror(archiveOf(mArchive)));
    const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> owner(file, zip_fclose);
    // The size that is promised is trusted no further than it is kept.
    std::string bytes;
    std::vector<char> block(1 << 16);
    for (;;) {
        const zip_int64_t count = zip_fread(file, block.data(), block.size());
        if (count < 0)
            throw refuse(zip_file_strerror(file)); // a wrong checksum is told here
        if (count == 0)
            return bytes;
        bytes.append(block.data(), static_cast<std::size_t>(count));
        if (bytes.size() > mLimits.entryBytes)
            throw refuse(tooLarge);
    }
}

void ContainerWriter::add(std::string name, std::string bytes, Packing packing)
{
    mEntries.push_back({ std::move(name), std::move(bytes), packing });
}

std::string ContainerWriter::finish()
{
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* target = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_t* archive = target ? zip_open_from_source(target, ZIP_TRUNCATE, &error) : nullptr;
    if (!archive) {
        if (target)
            zip_source_free(target);
        fail(error);
    }
    zip_source_keep(target);
    const std::unique_ptr<zip_source_t, void (*)(zip_source_t*)> owner(target, zip_source_free);
    for (const Entry& entry : mEntries) {
        zip_source_t* source = zip_source_buffer(archive, entry.bytes.data(), entry.bytes.size(), 0);
        const zip_int64_t index
            = source ? zip_file_add(archive, entry.name.c_str(), source, ZIP_FL_ENC_UTF_8) : -1;
        const auto place = static_cast<zip_uint64_t>(index);
        constexpr zip_uint16_t dateOf1980 = 1 << 5 | 1; // a clock would make every saving different
        const zip_int32_t method = entry.packing == Packing::Stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE;
        if (index < 0 || zip_set_file_compression(archive, place, method, 6) != 0
            || zip_file_set_dostime(archive, place, 0, dateOf1980, 0) != 0) {
            if (source && index < 0)
                zip_source_free(source);
            const std::string message = zip_strerror(archive);
            zip_discard(archive);
            throw DocumentFileError(message);
        }
    }
    if (zip_close(archive) != 0) {
        const std::string message = zip_strerror(archive);
        zip_discard(archive);
        throw DocumentFileError(message);
    }
    zip_stat_t info;
    zip_stat_init(&info);
    if (zip_source_open(target) != 0)
        fail(*zip_source_error(target));
    std::string bytes;
    if (zip_source_stat(target, &info) == 0 && (info.valid & ZIP_STAT_SIZE)) {
        bytes.resize(info.size);
        if (zip_source_read(target, bytes.data(), bytes.size()) != static_cast<zip_int64_t>(bytes.size()))
            bytes.clear();
    }
    zip_source_close(target);
    if (bytes.empty() && !mEntries.empty())
        throw DocumentFileError("the container can't be made");
    return bytes;
}

} // namespace app
