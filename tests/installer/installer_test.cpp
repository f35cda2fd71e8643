// The Windows Installer packages under Wine: a quiet install puts every file and registry value
// in place, a newer package replaces an older one and keeps the user's display options, and a
// quiet removal leaves no file or key of the package behind.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>

#include "arbolet/version.h"
#include "installed_product.h"
#include "windows/options/settings.h"

namespace arbolet::installer_testing {
namespace {
namespace fs = std::filesystem;
namespace options = windows::options;

constexpr PackageContents kContents{ARBOLET_PACKAGED_ARBOLET_DLL != 0,
                                    ARBOLET_PACKAGED_ARBOLET_EXPLORER_EXE != 0,
                                    ARBOLET_PACKAGED_ARBOLET_CHM != 0};

// Runs msiexec quietly on a package and tells how long it took.
DWORD Msiexec(const wchar_t* action, const char* package) {
    const auto start = std::chrono::steady_clock::now();
    const DWORD status = RunMsiexec(action + (L" \"" + WindowsPath(package) + L"\" /qn"));
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("msiexec %ls %s: exit %lu, %.1f s\n", action, package,
                static_cast<unsigned long>(status), took.count());
    return status;
}

DWORD Install(const char* package) {
    return Msiexec(L"/i", package);
}

DWORD Remove(const char* package) {
    return Msiexec(L"/x", package);
}

// Says which parts of the product this build's package lacks, so that a run without them
// never looks like a full test.
void ReportMissingParts() {
    if (!kContents.addIn) std::printf("not in this package (no target): Arbolet.dll\n");
    if (!kContents.explorer) std::printf("not in this package (no target): arbolet-explorer.exe\n");
    if (!kContents.help) std::printf("not in this package (no target): Arbolet.chm\n");
}

void ExpectInstalled(Scope scope) {
    for (const fs::path& file : ExpectedFiles(scope, kContents)) {
        EXPECT_TRUE(fs::is_regular_file(file)) << file;
        if (file.extension() != ".chm") {
            EXPECT_EQ(FileVersion(file), Widen(ARBOLET_VERSION_TEXT)) << file;
        }
    }
    for (const RegistryValue& value : ExpectedValues(scope, kContents))
        EXPECT_EQ(StoredText(value), ExpectedText(value));
    if (kContents.explorer) {
        const auto entries = StartMenuEntries();
        EXPECT_TRUE(fs::exists(entries[0]) || fs::exists(entries[1]))
            << "no Start-menu entry " << entries[0] << " or " << entries[1];
    }
}

void ExpectNothingLeft(Scope scope) {
    EXPECT_FALSE(fs::exists(InstallFolder(scope))) << InstallFolder(scope);
    for (const fs::path& entry : StartMenuEntries())
        EXPECT_FALSE(fs::exists(entry)) << entry;
    for (const auto& [root, key] : CreatedKeys(scope))
        EXPECT_FALSE(KeyExists(root, key)) << std::string(key.begin(), key.end());
    EXPECT_TRUE(InstalledVersions(Widen(ARBOLET_UPGRADE_CODE).c_str()).empty());
}

TEST(Installer, UpgradesInPlaceKeepingTheOptionsAndRemovesEverythingItAdded) {
    ReportMissingParts();
    const std::wstring upgradeCode = Widen(ARBOLET_UPGRADE_CODE);
    ASSERT_EQ(Install(ARBOLET_OLDER_MSI), 0u);
    EXPECT_EQ(InstalledVersions(upgradeCode.c_str()),
              std::vector<std::wstring>{Widen(ARBOLET_OLDER_VERSION)});
    // The developer's choices, as the add-in stores them while the older release runs.
    options::SortByName(true);
    options::ShowVariables(false);

    ASSERT_EQ(Install(ARBOLET_MSI), 0u);
    EXPECT_EQ(InstalledVersions(upgradeCode.c_str()),
              std::vector<std::wstring>{Widen(ARBOLET_VERSION_TEXT)});
    ExpectInstalled(Scope::PerMachine);
    EXPECT_TRUE(options::SortByName());
    EXPECT_FALSE(options::ShowVariables());

    ASSERT_EQ(Remove(ARBOLET_MSI), 0u);
    ExpectNothingLeft(Scope::PerMachine);
    // The options are the developer's, written by the add-in, not the package's.
    EXPECT_TRUE(options::SortByName());
    RegDeleteTreeA(HKEY_CLASSES_ROOT, options::OptionsKeyPath().c_str());
}

TEST(Installer, PerUserPackageInstallsForTheUserAlone) {
    ASSERT_EQ(Install(ARBOLET_MSI_PER_USER), 0u);
    ExpectInstalled(Scope::PerUser);
    // Nothing for the whole machine: a per-user install needs no administrator.
    for (const auto& [root, key] : CreatedKeys(Scope::PerMachine)) {
        if (root == HKEY_LOCAL_MACHINE) {
            EXPECT_FALSE(KeyExists(root, key)) << std::string(key.begin(), key.end());
        }
    }
    EXPECT_FALSE(fs::exists(InstallFolder(Scope::PerMachine)));
    ASSERT_EQ(Remove(ARBOLET_MSI_PER_USER), 0u);
    ExpectNothingLeft(Scope::PerUser);
}

}  // namespace
}  // namespace arbolet::installer_testing
