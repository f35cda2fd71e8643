// The classes the add-in DLL serves: the connection object and the tool-window control.
#pragma once

#include <span>

#include "windows/com/class_factory.h"

namespace arbolet::windows::addin {

std::span<const com::ClassEntry> AddInClasses() noexcept;

}  // namespace arbolet::windows::addin
