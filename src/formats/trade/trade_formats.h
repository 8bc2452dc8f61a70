#pragma once

#include "formats/remote.h"

namespace keplo::trade {

// A file each.
extern const RemoteFormat kFlipperFormat;
extern const RemoteFormat kLircFormat;
extern const RemoteFormat kGirrFormat;
extern const RemoteFormat kKeymapFormat;
extern const RemoteFormat kEsphomeFormat;
extern const RemoteFormat kTasmotaFormat;
extern const RemoteFormat kHomeAssistantFormat;
extern const RemoteFormat kSmartIrFormat;
extern const RemoteFormat kProntoFormat;
extern const RemoteFormat kIrdbFormat;
extern const RemoteFormat kPulseFormat;
extern const RemoteFormat kSignedFormat;

}  // namespace keplo::trade
