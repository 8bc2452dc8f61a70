#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace keplo::qt {

/// A text of a model as a widget shows it: UTF-8, or Latin-1 where the bytes are no UTF-8, as in files from
/// before it.
QString ShownText(std::string_view text);

/// The same for a widget that reads '&' as the mark of an access key.
/// @param accessKey letter that Alt reaches the widget by, found in the text without regard to case; the
///        text stays without one if it is not there
QString ShownCaption(std::string_view text, char accessKey = '\0');

/// What the user typed, as a model keeps it: UTF-8.
std::string TypedText(const QString& text);

}  // namespace keplo::qt
