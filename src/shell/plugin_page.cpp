#include "shell/plugin_page.h"

#include <array>

namespace keplo {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kTableHead =
    R"(<table border="1" cellpadding="0" cellspacing="0" style="border-collapse: collapse" bordercolor="#000080" )"
    R"(id="AutoNumber1" bordercolorlight="#0000FF" bordercolordark="#000080" bgcolor="#00FFFF">)";
constexpr std::string_view kHeaderCellTag = R"(<th bordercolor="#000080" bgcolor="#C0C0C0">)";
constexpr std::array<std::string_view, ui::ListView::kFields> kHeadings = {
    "Event Name", "Event Description", "Infrared Command", "Activated", "Zone", "Event ID"};

std::string HtmlHeaderCell(std::string_view text) {
  std::string cell(kHeaderCellTag);
  cell += R"(<p align="center"><font face="Verdana" size="2">)";
  cell += text;
  return HtmlLine(cell + "</font></th>");
}

std::string HtmlDataCell(std::string_view text) {
  std::string cell = R"(<td align="center"><font face="Verdana" size="2">)";
  cell += text;
  return HtmlLine(cell + "</font></td>");
}

std::string HeadingRow(PageRequest request) {
  std::string row = "<tr>";
  if (request == PageRequest::Post) row += kHeaderCellTag;
  for (const std::string_view heading : kHeadings) row += HtmlHeaderCell(heading);
  return row + HtmlLine("</tr>");
}

std::string EventRow(const ui::ListView& list, int number) {
  std::string row = HtmlLine("<tr>");
  for (int field = 0; field < ui::ListView::kFields; ++field) row += HtmlDataCell(list.Text(number, field));
  return row + HtmlLine("</tr>");
}

}  // namespace

std::string HtmlLine(std::string_view text) {
  std::string line(text);
  line += kLineEnd;
  return line;
}

std::string HtmlClose() { return HtmlLine("</BODY>") + HtmlLine("</HTML>"); }

std::string EventPage(const ui::ListView& list, PageRequest request) {
  std::string page = "<HTML>" + HtmlLine(kTableHead) + HeadingRow(request);
  for (int row = 1; row <= list.Count(); ++row) page += EventRow(list, row);
  return page + "</TABLE>" + HtmlClose();
}

}  // namespace keplo
