#include "Gallery.h"

#include <cstdio>
#include <exception>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: vxr_demo FOLDER\n", stderr);
        return 2;
    }
    try {
        const int count = vxr::demo::writeGallery(argv[1]);
        std::printf("%d scenes drawn: open %s/index.html\n", count, argv[1]);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "vxr_demo: %s\n", problem.what());
        return 1;
    }
}
