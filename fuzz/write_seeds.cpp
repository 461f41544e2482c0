// write_seeds FOLDER: writes every target's seeds to FOLDER/<target>/ and its dictionary to
// FOLDER/<target>.dict, and lists the targets.

#include <cstdio>
#include <filesystem>

#include "fuzz/target.h"
#include "tests/kit/scratch_folder.h"

using namespace orvex;
using namespace orvex::fuzz;

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: fuzz_seeds FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    for (const FuzzTarget& target : FuzzTargets()) {
        std::filesystem::create_directories(folder / target.name);
        int number = 0;
        for (const std::string& seed : target.seeds()) {
            WriteBytes(folder / target.name / ("seed-" + std::to_string(++number)), seed);
        }
        const std::string dictionary = std::string(target.name) + ".dict";
        WriteBytes(folder / dictionary, target.dictionary != nullptr ? target.dictionary : "");
        printf("%s\n", target.name);
    }
}
