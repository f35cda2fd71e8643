// The environment's menus for projects on disk: the command bars "Menu Bar" (File, View,
// Project), "Add-Ins" and "Standard", whose controls are enabled as the IDE enables them and do
// to the files what the IDE would do. Used only inside src/disk.
#pragma once

#include <memory>

#include "environment/command_bars.h"

namespace arbolet::disk {

class DiskEnvironment;

std::shared_ptr<env::CommandBars> MakeDiskCommandBars(std::weak_ptr<DiskEnvironment> environment);

}  // namespace arbolet::disk
