#include "window/form1.h"

namespace keplo {

void Form1::HelpContentMenu_Click() {}

void Form1::WebPageMenu_Click() {}

void Form1::UpdateMenu_Click() {}

void Form1::AboutMenu_Click() {}

}  // namespace keplo
