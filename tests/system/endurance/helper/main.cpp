// The program endurance_helper: work of the endurance tests that needs other processes.
//
//   endurance_helper print KIND INSTALLATION FILE  prints a job of that kind into a file
//   endurance_helper write-log BOOK FIRST COUNT    writes to the driver's log until the book says stop
//
// The latter exists only on Windows: natively a named mutex belongs to one process.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "tests/system/endurance/helper/job_kinds.h"
#include "tests/system/endurance/helper/log_writers.h"

using namespace orvex;
using namespace orvex::tools;

namespace {

#ifdef _WIN32
int WriteLog(char** values) {
    const SharedTurnBook book(values[0]);
    const DriverLibrary driver(DefaultDriverFile());
    WriteUntilStopped(driver, *book, static_cast<uint32_t>(atoi(values[1])),
                      static_cast<uint32_t>(atoi(values[2])));
    return EXIT_SUCCESS;
}
#endif

int Print(char** values) {
    const std::filesystem::path installation = values[1];
    DriverSession session(JobSession(installation));
    const std::string bytes =
        PrintJob(session, installation, JobKinds()[static_cast<size_t>(atoi(values[0]))]);
    std::ofstream file(values[2], std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    return file ? EXIT_SUCCESS : EXIT_FAILURE;
}

struct Command {
    const char* name;
    int values;
    int (*run)(char** values);
};
constexpr Command kCommands[] = {
    {"print", 3, Print},
#ifdef _WIN32
    {"write-log", 3, WriteLog},
#endif
};

}  // namespace

int main(int count, char** values) {
    for (const Command& command : kCommands) {
        if (count != command.values + 2 || strcmp(values[1], command.name) != 0) continue;
        try {
            return command.run(values + 2);
        } catch (const std::exception& failure) {
            fprintf(stderr, "endurance_helper: %s\n", failure.what());
            return EXIT_FAILURE;
        }
    }
    fprintf(stderr, "endurance_helper: run by the endurance tests\n");
    return 2;
}
