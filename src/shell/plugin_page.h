#pragma once

#include <string>
#include <string_view>

#include "ui/list_view.h"

namespace keplo {

/// A line with its line end.
std::string HtmlLine(std::string_view text);
/// The end of a page.
std::string HtmlClose();

/// The request that a page answers. The page for a POST has an additional opening tag before the first
/// heading, which hosts may rely on.
enum class PageRequest { Get, Post };

/// The event list as a page for the host's web server. Texts are not escaped.
std::string EventPage(const ui::ListView& list, PageRequest request);

}  // namespace keplo
