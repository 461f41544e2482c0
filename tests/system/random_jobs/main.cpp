// Random jobs through the driver and its model:
//
//     random_jobs_tests [--jobs 5000] [--seed 7] [options of GoogleTest]

#include <gmock/gmock.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

#include "tests/system/random_jobs/job_count.h"

int main(int count, char** arguments) {
    testing::InitGoogleMock(&count, arguments);
    for (int i = 1; i < count; i += 2) {
        char* end = nullptr;
        const unsigned long long number = i + 1 < count ? strtoull(arguments[i + 1], &end, 10) : 0;
        const bool isNumber = end != nullptr && end != arguments[i + 1] && *end == '\0';
        if (isNumber && strcmp(arguments[i], "--jobs") == 0 && number > 0 && number <= 1000000000) {
            orvex::jobCount = static_cast<int>(number);
        } else if (isNumber && strcmp(arguments[i], "--seed") == 0) {
            orvex::jobSeed = number;
        } else {
            std::cerr << "random_jobs_tests: " << arguments[i] << " is not --jobs or --seed with a number\n";
            return 2;
        }
    }
    return RUN_ALL_TESTS();
}
