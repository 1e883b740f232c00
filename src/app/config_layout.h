#pragma once

#include "ui/control_measure.h"
#include "ui/layout.h"

namespace tidelink {

/// The arrangement of the main dialog's controls, measured from their present texts.
girder::ui::box config_dialog_layout(const girder::ui::control_measure& measure);

} // namespace tidelink
