// Prints how many nanoseconds it takes to load the last library that is named, after the others.
// Usage: load_library LIBRARY...

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "benchmarks/start/Now.h"

int main(int argc, char** argv) {
    long long ns = -1;
    for (int i = 1; i < argc; ++i) {
        const long long start = benchmarks::nowNs();
        if (dlopen(argv[i], RTLD_NOW) == nullptr) {
            std::puts(dlerror());
            return EXIT_FAILURE;
        }
        ns = benchmarks::nowNs() - start;
    }
    std::printf("%lld\n", ns);
    return EXIT_SUCCESS;
}
