#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace keplo::qt {

/// A text of a model for a widget. It is decoded as UTF-8 or, if it is not valid UTF-8, as Latin-1, which old
/// files use.
QString ShownText(std::string_view text);

/// Like ShownText, for a widget in which '&' marks an access key.
/// @param accessKey letter of the text, in either case, for reaching the widget with Alt; ignored if it is
/// not in
///        the text
QString ShownCaption(std::string_view text, char accessKey = '\0');

/// Typed text for a model, in UTF-8.
std::string TypedText(const QString& text);

}  // namespace keplo::qt
