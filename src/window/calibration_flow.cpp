#include "window/form1.h"

namespace keplo {

void Form1::CalibrationMenu_Click() {}

}  // namespace keplo
