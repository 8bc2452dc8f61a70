#include "keplo_mod.h"

namespace keplo {

const std::string VersionText = KEPLO_VERSION;

}  // namespace keplo
