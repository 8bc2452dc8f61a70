#include <QStandardPaths>
#include <regex>

#include "host/running_host.h"

namespace keplo::tests {

namespace {

const std::string kScript = "<script>document.title='x'</script>";

class WebTest : public ::testing::Test {
 protected:
  void Start() {
    host_.Start({});
    port_ = host_.Port();
    ASSERT_NE(port_, 0);
  }

  std::string AskFor(const std::string& line, const std::string& rest = "\r\n") const {
    return Ask(port_, HttpRequest(line, port_, rest));
  }

  ApplicationPath app_;
  RunningHost host_{app_};
  std::uint16_t port_ = 0;
};

/// The page as a person would write it down.
std::string ExpectedPage(bool post, const std::vector<std::string>& cells) {
  const std::string headCell = "<th bordercolor=\"#000080\" bgcolor=\"#C0C0C0\">";
  std::string page =
      "<HTML><table border=\"1\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse: collapse\" "
      "bordercolor=\"#000080\" id=\"AutoNumber1\" bordercolorlight=\"#0000FF\" bordercolordark=\"#000080\" "
      "bgcolor=\"#00FFFF\">\r\n<tr>" +
      (post ? headCell : "");
  for (const char* heading :
       {"Event Name", "Event Description", "Infrared Command", "Activated", "Zone", "Event ID"}) {
    page +=
        headCell + "<p align=\"center\"><font face=\"Verdana\" size=\"2\">" + heading + "</font></th>\r\n";
  }
  page += "</tr>\r\n<tr>\r\n";
  for (const std::string& cell : cells) {
    page += "<td align=\"center\"><font face=\"Verdana\" size=\"2\">" + cell + "</font></td>\r\n";
  }
  return page + "</tr>\r\n</TABLE></BODY>\r\n</HTML>\r\n";
}

TEST_F(WebTest, SendsThePagesByteForByte) {
  app_.AddEvents({{"5'<&\"", "<i>Größe</i> & 'so'", kScript, "NEC&TV_POWER", true, 4}});
  Start();
  const std::vector<std::string> cells = {
      "<i>Größe</i> & 'so'", kScript, "NEC&TV_POWER", "True", "4", "5'<&\""};
  const std::string get = AskFor("GET /InputKeplo");
  EXPECT_EQ(BodyOf(get), ExpectedPage(false, cells));
  EXPECT_EQ(BodyOf(AskFor("POST /InputKeplo", "Content-Length: 7\r\n\r\na=b&c=d")),
            ExpectedPage(true, cells));
  for (const char* header :
       {"HTTP/1.1 200", "default-src 'none'", "sandbox", "X-Content-Type-Options: nosniff",
        "Cache-Control: no-store", "text/html; charset=utf-8"}) {
    EXPECT_NE(get.find(header), std::string::npos) << header;
  }
  EXPECT_EQ(get.find("script-src"), std::string::npos);
  EXPECT_NE(AskFor("GET /").find("href=\"/InputKeplo\""), std::string::npos);
}

TEST_F(WebTest, TellsAPlaceThatAnswersWhenEveryAddressIsServed) {
  host_.Start({"--http-address", "0.0.0.0"});
  const std::string hint = host_.WaitForLog("http://127.0.0.1:");
  ASSERT_NE(hint.find("--http-name"), std::string::npos) << hint;
  port_ = host_.Port();
  const std::string own = "GET / HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port_) + "\r\n\r\n";
  EXPECT_EQ(Ask(port_, own).substr(0, 12), "HTTP/1.1 200");
}

TEST_F(WebTest, RefusesAndGoesOn) {
  Start();
  struct Case {
    std::string Request;
    std::string Status;
  };
  const std::string rebound =
      "GET /InputKeplo HTTP/1.1\r\nHost: evil.example:" + std::to_string(port_) + "\r\n\r\n";
  const std::string large =
      HttpRequest("POST /InputKeplo", port_, "Content-Length: 1000000\r\n\r\n" + std::string(1000000, 'x'));
  for (const Case& refused :
       std::vector<Case>{{rebound, "421"},
                         {large, "413"},
                         {HttpRequest("GET /", port_, std::string(20000, 'x')), "431"},
                         {HttpRequest("GET /", port_) + HttpRequest("GET /", port_), "400"},
                         {HttpRequest("PUT /InputKeplo", port_), "405"},
                         {HttpRequest("GET /", port_, "Upgrade: websocket\r\n\r\n"), "400"},
                         {HttpRequest("GET /other", port_), "404"},
                         {HttpRequest("GET /../../etc/passwd", port_), "404"},
                         {"\x16\x03\x01\x02 TLS\r\n\r\n", "400"}}) {
    const std::string response = Ask(port_, refused.Request);
    EXPECT_EQ(response.substr(0, 12), "HTTP/1.1 " + refused.Status) << response;
    EXPECT_EQ(response.find("<table"), std::string::npos);
  }
  const std::string page = AskFor("GET /InputKeplo"), head = AskFor("HEAD /InputKeplo");
  EXPECT_EQ(page.substr(0, 12), "HTTP/1.1 200");
  EXPECT_EQ(head.substr(0, 12), "HTTP/1.1 200");
  EXPECT_EQ(head.find("\r\n\r\n") + 4, head.size()) << head;
  const std::size_t length = page.size() - page.find("\r\n\r\n") - 4;
  EXPECT_NE(head.find("Content-Length: " + std::to_string(length) + "\r\n"), std::string::npos) << head;
}

TEST_F(WebTest, HoldsConnectionsAndHalfRequestsWithoutHarm) {
  Start();
  std::vector<std::unique_ptr<Client>> slow;
  for (int number = 0; number < 15; ++number) {
    slow.push_back(std::make_unique<Client>(port_));
    slow.back()->Send("GET / HTT");
  }
  EXPECT_EQ(AskFor("GET /").substr(0, 12), "HTTP/1.1 200");
  for (int number = 0; number < 50; ++number) slow.push_back(std::make_unique<Client>(port_));
  EXPECT_EQ(AskFor("GET /").substr(0, 12), "HTTP/1.1 200") << "idle clients give way";
  slow.clear();
  host_.Terminate();
  EXPECT_EQ(host_.Wait(), 0);
}

TEST_F(WebTest, ShowsATableInABrowserAndRunsNoScript) {
  QString browser = QStandardPaths::findExecutable("chromium");
  if (browser.isEmpty()) GTEST_SKIP() << "chromium is not installed";
  app_.AddEvents({{"17", kScript, "<b>bold</b>", "NEC&TV_POWER", true, 0}});
  Start();

  QProcess chromium;
  chromium.setStandardErrorFile(QProcess::nullDevice());
  chromium.start(browser, {"--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                           QStringLiteral("--user-data-dir=") + QString::fromStdString(app_.Home().string()),
                           "--dump-dom", QStringLiteral("http://127.0.0.1:%1/InputKeplo").arg(port_)});
  ASSERT_TRUE(chromium.waitForFinished(18000));
  const std::string dom = chromium.readAllStandardOutput().toStdString();

  std::vector<std::string> cells;
  const std::regex cell("<td[^>]*><font[^>]*>(.*?)</font></td>");
  for (auto match = std::sregex_iterator(dom.begin(), dom.end(), cell); match != std::sregex_iterator();
       ++match) {
    cells.push_back((*match)[1]);
  }
  EXPECT_EQ(cells, (std::vector<std::string>{kScript, "<b>bold</b>", "NEC&amp;TV_POWER", "True", "0", "17"}))
      << dom;
  EXPECT_EQ(dom.find("<title>"), std::string::npos) << dom;
}

}  // namespace

}  // namespace keplo::tests
