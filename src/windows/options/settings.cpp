// The display option store over one process-wide kvRegistry.
#include "windows/options/settings.h"

#include <windows.h>

#include <cstdint>

#include "windows/options/scrambled_text.h"
#include "windows/registry/kv_registry.h"

namespace arbolet::windows::options {
namespace {

constexpr auto kOptionsKey = Scramble("Quorlin.Arbolet\\DisplayOptions");

// The stored default of a display option read before it was ever written.
constexpr std::int16_t kFirstReadDefault = 1;
constexpr std::int16_t kDisplayFormDefault = -1;

// Created at the first option access and kept for the life of the process; callers set
// the whole selection before each use, so the shared instance carries nothing between them.
kvRegistry& PreparedRegistry() {
    static kvRegistry* const registry = new kvRegistry();
    registry->ClassKey(hive::kClassesRoot);
    registry->SectionKey(Unscramble(kOptionsKey));
    registry->ValueType(REG_SZ);
    return *registry;
}

bool ReadDisplayOption(const char* name) {
    kvRegistry& registry = PreparedRegistry();
    registry.ValueKey(name);
    registry.ValueType(REG_DWORD);
    if (registry.ValueExists()) return registry.Value().ToBoolean();
    registry.Value(kFirstReadDefault);
    return false;
}

void WriteOption(const char* name, bool bValue) {
    kvRegistry& registry = PreparedRegistry();
    registry.ValueKey(name);
    registry.ValueType(REG_DWORD);
    registry.Value(std::int32_t{bValue ? -1 : 0});
}

}  // namespace

bool SortByName() {
    return ReadDisplayOption("SortByName");
}
void SortByName(bool bValue) {
    WriteOption("SortByName", bValue);
}
bool ShowConstants() {
    return ReadDisplayOption("ShowConstants");
}
void ShowConstants(bool bValue) {
    WriteOption("ShowConstants", bValue);
}
bool ShowSectionEnd() {
    return ReadDisplayOption("ShowSectionEnd");
}
void ShowSectionEnd(bool bValue) {
    WriteOption("ShowSectionEnd", bValue);
}
bool ShowVariables() {
    return ReadDisplayOption("ShowVariables");
}
void ShowVariables(bool bValue) {
    WriteOption("ShowVariables", bValue);
}
bool ShowTypes() {
    return ReadDisplayOption("ShowTypes");
}
void ShowTypes(bool bValue) {
    WriteOption("ShowTypes", bValue);
}
bool ShowEnums() {
    return ReadDisplayOption("ShowEnums");
}
void ShowEnums(bool bValue) {
    WriteOption("ShowEnums", bValue);
}
bool ShowCompiler() {
    return ReadDisplayOption("ShowCompiler");
}
void ShowCompiler(bool bValue) {
    WriteOption("ShowCompiler", bValue);
}

bool DisplayForm() {
    kvRegistry& registry = PreparedRegistry();
    registry.ValueType(REG_DWORD);
    registry.ValueKey("DisplayForm");
    if (!registry.ValueExists()) registry.Value(kDisplayFormDefault);
    return registry.Value().ToBoolean();
}

void DisplayForm(bool bValue) {
    kvRegistry& registry = PreparedRegistry();
    registry.ValueType(REG_DWORD);
    registry.ValueKey("DisplayForm");
    registry.Value(std::int32_t{bValue ? -1 : 0});
}

bool ShowMetrics() {
    kvRegistry& registry = PreparedRegistry();
    registry.ValueKey("ShowMetrics");
    registry.ValueType(REG_DWORD);
    return registry.ValueExists() && registry.Value().ToBoolean();
}

void ShowMetrics(bool bValue) {
    WriteOption("ShowMetrics", bValue);
}

std::string OptionsKeyPath() {
    return Unscramble(kOptionsKey);
}

}  // namespace arbolet::windows::options
