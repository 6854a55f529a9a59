// nubo-pack-bench: reads radii from standard input, one per line, packs them and prints every
// circle as "x y r" in input order, then "enclosing R", so that the packing can be compared line by
// line with other implementations of the same front-chain method. Lines that are not numbers are
// skipped and reported on standard error.
#include "core/layout/CirclePack.h"

#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

int main()
{
    std::vector<double> radii;
    std::string line;
    long lineNumber = 0;
    while (std::getline(std::cin, line)) {
        ++lineNumber;
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            continue;
        try {
            size_t used = 0;
            const double r = std::stod(line, &used);
            if (line.find_first_not_of(" \t\r", used) != std::string::npos)
                throw std::invalid_argument("trailing text");
            radii.push_back(r);
        } catch (const std::exception&) {
            std::fprintf(stderr, "line %ld skipped: not a number\n", lineNumber);
        }
    }
    const auto result = nubo::CirclePack::pack(radii);
    for (const auto& c : result.circles)
        std::printf("%.17g %.17g %.17g\n", c.x, c.y, c.r);
    std::printf("enclosing %.17g\n", result.radius);
    return 0;
}
