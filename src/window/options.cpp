#include "window/form1.h"

namespace keplo {

void Form1::ComList_Click() {}

void Form1::StdDcdMenu_Click() {}

void Form1::IRMouseMenu_Click() {}

void Form1::TxDCheckBox_Click() {}

void Form1::BeepCheckbox_Click() {}

void Form1::VexilCheckbox_Click() {}

void Form1::Zone_Click() {}

void Form1::MenuProcDelay_Click() {}

}  // namespace keplo
