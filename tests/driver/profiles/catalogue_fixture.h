// An installation with profiles and their names.
#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "driver/support/installation.h"
#include "driver/support/text.h"
#include "tests/driver/profiles/file_watch.h"
#include "tests/driver/profiles/name_texts.h"
#include "tests/driver/profiles/profile_bytes.h"
#include "tests/kit/installation_fixture.h"
#include "tests/kit/log_capture.h"

namespace orvex {

class CatalogueFixture : public testing::Test {
  protected:
    CatalogueFixture() { installation_.WriteSettings("[UI]\r\nLanguage=DEU\r\n"); }

    void WriteProfile(const std::string& file, std::string_view tags) {
        installation_.Write(std::filesystem::path("profiles") / file, ProfileBytes(5, TagArea(tags), ""));
    }
    void WriteNames(std::u16string_view text) { installation_.Write("profilenames.inf", WideFile(text)); }

    // Returns the installation folder as the driver writes it.
    std::string Folder() {
        char text[512];
        const HeapArray<WCHAR> folder = GetInstallationFolder();
        NarrowText(text, sizeof text, {folder.get(), TextLength(folder.get())});
        return text;
    }
    std::string ProfilePath(const std::string& file) { return Folder() + "\\profiles\\" + file; }

    InstallationFixture installation_;
};

}  // namespace orvex
