// The Windows Installer packages under Wine: a quiet install puts every file and registry value
// in place, a newer package replaces an older one and keeps the user's display options, also
// while an IDE holds the add-in loaded, and a quiet removal leaves no file or key of the package
// behind.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cwctype>

#include "arbolet/com_identity.h"
#include "arbolet/version.h"
#include "host_process.h"
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

// This build's copy of an installed file.
fs::path BuiltFile(const fs::path& installed) {
    return fs::path(WindowsPath(ARBOLET_STAGE)) / installed.filename();
}

// Every file is this build's (the older test package's DLL differs from it), with its version;
// every registry value is in place.
void ExpectInstalled(Scope scope) {
    for (const fs::path& file : ExpectedFiles(scope, kContents)) {
        EXPECT_TRUE(fs::is_regular_file(file)) << file;
        EXPECT_TRUE(SameBytes(file, BuiltFile(file))) << file << " is not this build's";
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

// The emulated IDE over the example project, with the add-in the installer registered.
HostProcess StartInstalledAddIn(const std::wstring& hold) {
    return HostProcess(
        WindowsPath(ARBOLET_VB6HOST),
        {L"--installed", Widen(ARBOLET_CONNECT_PROGID), WindowsPath(ARBOLET_EXAMPLE_PROJECT)},
        hold);
}

bool EndsWithCaseBlind(const std::wstring& text, const std::wstring& end) {
    return text.size() >= end.size() &&
           std::equal(end.rbegin(), end.rend(), text.rbegin(),
                      [](wchar_t a, wchar_t b) { return std::towlower(a) == std::towlower(b); });
}

// Whether the system replaces `file` with a copy of `replacement` at its next restart.
bool ReplacedAtRestart(const fs::path& file, const fs::path& replacement) {
    const std::vector<std::wstring> pending = PendingRenames();
    // Pairs of names: the source (\??\C:\...), then the target ("" to delete).
    for (std::size_t i = 0; i + 1 < pending.size(); i += 2) {
        const std::wstring ntPrefix = L"\\??\\";
        const fs::path from = pending[i].substr(pending[i].rfind(ntPrefix, 0) == 0 ? 4 : 0);
        const std::wstring to = pending[i + 1];
        if (EndsWithCaseBlind(to, file.wstring()) && SameBytes(from, replacement)) return true;
    }
    return false;
}

// What Windows does first at start-up: Wine's restart carries out the pending file operations.
bool Restart() {
    if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr) return false;
    return RunProgram(L"wineboot.exe -r") == 0;
}

// An IDE holds the older release's DLL loaded while the newer package installs quietly. The
// result is never a mix: either the new DLL is in place at once, or msiexec asks for a restart,
// the older DLL stays whole for the IDE still using it, and the restart puts the new one in
// place. The IDE's session goes on unharmed either way, and the next session loads the new DLL.
TEST(Installer, ReplacesTheAddInAnIdeHoldsLoaded) {
    if (!kContents.addIn) GTEST_SKIP() << "this package has no Arbolet.dll";
    ASSERT_EQ(Install(ARBOLET_OLDER_MSI), 0u);
    const fs::path dll = InstallFolder(Scope::PerMachine) / "Arbolet.dll";
    const std::vector<char> older = FileBytes(dll);
    HostProcess ide = StartInstalledAddIn(L"ArboletInstallerTestHold");
    ASSERT_TRUE(ide.WaitUntilHeld(120000)) << ide.Finish();

    const DWORD status = Install(ARBOLET_MSI);
    ASSERT_TRUE(status == ERROR_SUCCESS || status == ERROR_SUCCESS_REBOOT_REQUIRED) << status;
    EXPECT_EQ(InstalledVersions(Widen(ARBOLET_UPGRADE_CODE).c_str()),
              std::vector<std::wstring>{Widen(ARBOLET_VERSION_TEXT)});
    if (status == ERROR_SUCCESS_REBOOT_REQUIRED) {
        std::printf("msiexec asks for a restart to replace the DLL in use\n");
        EXPECT_EQ(FileBytes(dll), older) << "the DLL in use was changed under the IDE";
        EXPECT_TRUE(ReplacedAtRestart(dll, BuiltFile(dll)));
    }
    const std::string heldRun = ide.Finish();
    EXPECT_TRUE(AllStepsPassed(heldRun)) << heldRun;
    EXPECT_NE(heldRun.find("ok: held the add-in"), std::string::npos) << heldRun;
    if (status == ERROR_SUCCESS_REBOOT_REQUIRED && !Restart()) {
        GTEST_SKIP() << "no Wine here to restart: the rest needs a real restart";
    }
    ExpectInstalled(Scope::PerMachine);
    EXPECT_TRUE(PendingRenames().empty());

    HostProcess next = StartInstalledAddIn(L"");
    const std::string nextRun = next.Finish();
    EXPECT_TRUE(AllStepsPassed(nextRun)) << nextRun;
    EXPECT_NE(nextRun.find("ok: the loaded Arbolet.dll is the installed one"), std::string::npos)
        << nextRun;
    ASSERT_EQ(Remove(ARBOLET_MSI), 0u);
    ExpectNothingLeft(Scope::PerMachine);
    RegDeleteTreeA(HKEY_CLASSES_ROOT, options::OptionsKeyPath().c_str());  // the IDE's, not ours
}

// The two halves of an install that other programs use in between (CTest runs the emulated IDE
// and the command-line tool over the installed add-in between them): run alone, they install
// and remove at once.
TEST(InstalledProduct, QuietInstall) {
    ReportMissingParts();
    // For a developer who never ran Arbolet: the IDE's tree that follows is compared with the
    // display options' defaults, whatever the tests before left.
    RegDeleteTreeA(HKEY_CLASSES_ROOT, options::OptionsKeyPath().c_str());
    ASSERT_EQ(Install(ARBOLET_MSI), 0u);
    ExpectInstalled(Scope::PerMachine);
}

TEST(InstalledProduct, QuietRemoval) {
    ASSERT_EQ(Remove(ARBOLET_MSI), 0u);
    ExpectNothingLeft(Scope::PerMachine);
}

}  // namespace
}  // namespace arbolet::installer_testing
