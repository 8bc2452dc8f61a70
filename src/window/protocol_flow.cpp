#include "window/form1.h"

namespace keplo {

void Form1::FileNewMenu_Click() {}

void Form1::EditMenu_Click() {}

void Form1::ProtoDeleteMenu_Click() {}

}  // namespace keplo
