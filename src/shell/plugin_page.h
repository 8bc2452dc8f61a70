#pragma once

#include <string>
#include <string_view>

#include "ui/list_view.h"

namespace keplo {

/// A text with a line end.
std::string HtmlLine(std::string_view text);
/// What closes a page.
std::string HtmlClose();

/// Which request a page answers. The page of a POST has one more opening tag, before the first heading;
/// hosts have always been sent it so.
enum class PageRequest { Get, Post };

/// The event list as a page for the host's web server. Cell texts go in as they stand: nothing is escaped.
std::string EventPage(const ui::ListView& list, PageRequest request);

}  // namespace keplo
