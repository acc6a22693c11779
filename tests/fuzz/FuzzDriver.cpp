// Runs a fuzz target without libFuzzer: first the kept corpus, then seeded random inputs and mutations
// of the corpus until the time is over. The same seed always tries the same inputs.
//
//     vxr_fuzz_NAME [--seconds N] [--seed N] [FILE or FOLDER]

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sys/time.h>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;
using Random = std::mt19937_64;

constexpr unsigned hangSeconds = 20; ///< an input that computes longer counts as a hang
constexpr std::size_t largestInput = 4096;

const Input* running = nullptr;

/// Keeps the input that failed and dies of the same signal. Only calls that are safe in a handler.
extern "C" void saveRunningInput(int signal)
{
    static const char name[] = "fuzz-failure.bin";
    if (running) {
        const int file = open(name, O_CREAT | O_TRUNC | O_WRONLY, 0644);
        const bool saved
            = file >= 0 && write(file, running->data(), running->size()) == ssize_t(running->size());
        static const char note[] = "the failing input is in fuzz-failure.bin\n";
        if (saved && write(STDERR_FILENO, note, sizeof note - 1) < 0)
            _exit(2);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

/// Counts the time that the program computes, not the time that other programs take. 0 stops the watch.
void watchForHang(unsigned seconds)
{
    const itimerval timer { {}, { time_t(seconds), 0 } };
    setitimer(ITIMER_PROF, &timer, nullptr);
}

void run(const Input& input)
{
    running = &input;
    watchForHang(hangSeconds);
    LLVMFuzzerTestOneInput(input.data(), input.size());
    watchForHang(0);
    running = nullptr;
}

/// The input in a file, or those of all files in a folder, in the order of their names.
std::vector<Input> readCorpus(const std::filesystem::path& place)
{
    std::vector<std::filesystem::path> files;
    if (!std::filesystem::is_directory(place))
        files = { place };
    else
        for (const auto& entry : std::filesystem::directory_iterator(place))
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<Input> corpus;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return corpus;
}

/// Few distinct bytes make coinciding coordinates and repeated tokens likely.
Input randomInput(Random& random)
{
    Input input(std::size_t(1) << (random() % 12));
    input.resize(input.size() / 2 + random() % (input.size() / 2 + 1));
    const unsigned alphabet = 1u << (1 + random() % 8);
    for (auto& byte : input)
        byte = std::uint8_t(random() % alphabet);
    return input;
}

/// An input of the corpus with some stretches changed, taken out, repeated, or followed by another input.
Input mutated(const std::vector<Input>& corpus, Random& random)
{
    Input input = corpus[random() % corpus.size()];
    for (auto rounds = 1 + random() % 8; rounds > 0 && !input.empty(); --rounds) {
        const auto at = input.begin() + long(random() % input.size());
        const auto end = at + std::min(input.end() - at, long(random() % 16));
        const Input stretch(at, end), &other = corpus[random() % corpus.size()];
        switch (random() % 5) {
        case 0:
            *at ^= std::uint8_t(1u << (random() % 8));
            break;
        case 1:
            *at = std::uint8_t(random());
            break;
        case 2:
            input.erase(at, end);
            break;
        case 3:
            input.insert(at, stretch.begin(), stretch.end());
            break;
        default:
            const auto kept = at - input.begin();
            input.resize(std::size_t(kept));
            input.insert(input.end(), other.begin() + std::min(kept, long(other.size())), other.end());
        }
    }
    input.resize(std::min(input.size(), largestInput));
    return input;
}

} // namespace

int main(int argc, char** argv)
{
    double seconds = 10;
    std::uint64_t seed = 1;
    std::vector<Input> corpus;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--seconds") && i + 1 < argc)
            seconds = std::atof(argv[++i]);
        else if (!std::strcmp(argv[i], "--seed") && i + 1 < argc)
            seed = std::strtoull(argv[++i], nullptr, 10);
        else
            corpus = readCorpus(argv[i]);
    }
    for (const int signal : { SIGABRT, SIGSEGV, SIGFPE, SIGILL, SIGBUS, SIGPROF })
        std::signal(signal, saveRunningInput);

    for (const Input& input : corpus)
        run(input);

    Random random(seed);
    std::size_t tried = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (; std::chrono::steady_clock::now() < end; ++tried) {
        const bool mutate = !corpus.empty() && random() % 2;
        run(mutate ? mutated(corpus, random) : randomInput(random));
    }
    std::printf(
        "%zu kept and %zu random inputs, seed %llu\n", corpus.size(), tried, (unsigned long long)seed);
}
