// make_profile RECIPE.json OUT.zvp: mixes a color profile from its recipe. The build makes the installed
// profiles with it.
#include <exception>
#include <iostream>

#include "tools/orvexprofile/profile_writer.h"
#include "tools/orvexprofile/recipe.h"

using namespace orvex::tools::profile;

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_profile RECIPE.json OUT.zvp\n";
        return 2;
    }
    try {
        WriteProfileFile(MixProfile(ReadRecipe(argv[1])), argv[2]);
    } catch (const std::exception& error) {
        std::cerr << "make_profile: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
