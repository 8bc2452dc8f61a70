#include "host_program/web/web_pages.h"

#include <QHostAddress>
#include <QUrl>
#include <QUrlQuery>
#include <array>
#include <cerrno>
#include <memory>
#include <utility>

#include "failure.h"
#include "host_program/web/web_gate.h"

namespace keplo::host {

namespace {

using Status = QHttpServerResponder::StatusCode;
using Method = QHttpServerRequest::Method;

constexpr const char* kHtml = "text/html; charset=utf-8";
constexpr const char* kText = "text/plain; charset=utf-8";

/// The plug-in does not escape texts, so a page may contain any markup. The policy forbids scripts, loading,
/// forms and refreshes, and only permits inline styles.
constexpr std::array<std::pair<const char*, const char*>, 6> kSafety = {
    {{"Content-Security-Policy",
      "default-src 'none'; style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'; frame-ancestors "
      "'none'; sandbox"},
     {"X-Content-Type-Options", "nosniff"},
     {"Cache-Control", "no-store"},
     {"Referrer-Policy", "no-referrer"},
     {"Cross-Origin-Resource-Policy", "same-origin"},
     {"Connection", "close"}}};

QHttpServerResponse Safe(const QByteArray& type, const QByteArray& body, Status status = Status::Ok) {
  QHttpServerResponse response(type, body, status);
  for (const auto& [name, value] : kSafety) response.setHeader(QByteArray(name), QByteArray(value));
  return response;
}

/// Answers a HEAD request.
void AnswerHead(QHttpServerResponder responder, const QHttpServerResponse& page) {
  responder.writeStatusLine(page.statusCode());
  responder.writeHeader("Content-Type", page.mimeType());
  responder.writeHeader("Content-Length", QByteArray::number(page.data().size()));
  for (const auto& [name, value] : kSafety) responder.writeHeader(name, value);
  responder.writeBody(QByteArray());
}

QByteArray Utf8(const std::string& text) { return QByteArray::fromStdString(text); }

/// The address for a browser on this machine, which cannot use the any-address.
QHostAddress AsSeenFromHere(const QHostAddress& where) {
  if (where == QHostAddress(QHostAddress::AnyIPv4)) return QHostAddress(QHostAddress::LocalHost);
  if (where == QHostAddress(QHostAddress::AnyIPv6)) return QHostAddress(QHostAddress::LocalHostIPv6);
  return where;
}

}  // namespace

WebPages::WebPages(PluginHost& host) : host_(host) {
  const auto head = [this](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
    const bool index = request.url().path().size() == 1;
    AnswerHead(std::move(responder), Safe(kHtml, index ? Index() : PluginPage(request)));
  };
  server_.route("/", Method::Head, head);
  server_.route(kPluginPath, Method::Head, head);
  server_.route("/", Method::Get, [this] { return Safe(kHtml, Index()); });
  server_.route(kPluginPath, Method::Get | Method::Post,
                [this](const QHttpServerRequest& request) { return Safe(kHtml, PluginPage(request)); });
  server_.setMissingHandler([](const QHttpServerRequest& request, QHttpServerResponder&& responder) {
    const QString path = request.url().path();
    const bool known = path == QLatin1String("/") || path == QLatin1String(kPluginPath);
    QHttpServerResponse response =
        known ? Safe(kText, "This page takes no such request.\n", Status::MethodNotAllowed)
              : Safe(kText, "There is no such page. The index is at /\n", Status::NotFound);
    if (request.method() == Method::Head) return AnswerHead(std::move(responder), response);
    if (known) response.setHeader("Allow", path.size() == 1 ? "GET, HEAD" : "GET, HEAD, POST");
    response.write(std::move(responder));
  });
}

std::string WebPages::Serve(const std::string& address, std::uint16_t port,
                            const std::vector<std::string>& names) {
  const QHostAddress where(QString::fromStdString(address));
  if (where.isNull()) {
    throw Failure(EINVAL, "The pages cannot be served at " + address + ": it is no IP address.");
  }
  auto gate = std::make_unique<WebGate>(names);
  if (!gate->listen(where, port)) {
    throw Failure(EADDRINUSE, "The pages cannot be served at " + address + " port " + std::to_string(port) +
                                  ": " + gate->errorString().toStdString() + ". Choose another --http-port.");
  }
  QUrl url;
  url.setScheme(QStringLiteral("http"));
  url.setHost(AsSeenFromHere(where).toString());
  url.setPort(gate->serverPort());
  url.setPath(QStringLiteral("/"));
  server_.bind(gate.release());
  std::string place = url.toString().toStdString();
  if (AsSeenFromHere(where) == where) return place;
  return place + ", and at every address of this machine; under a name only if --http-name tells it";
}

QByteArray WebPages::LastKey() const {
  const std::optional<HeardKey>& key = host_.LastKey();
  if (!key) return {};
  const std::string name = key->Command.empty() ? "code " + key->Code : key->Command;
  return "<p>Last key: " + QString::fromStdString(name).toHtmlEscaped().toUtf8() + ", held for " +
         QByteArray::number(key->HeldMs) + " ms, signals: " + QByteArray::number(key->Count) + "</p>\n";
}

/// Numbers of presses; empty before the first.
QByteArray WebPages::Presses() const {
  const auto tally = host_.Presses();
  if (!tally || tally->Presses == 0) return {};
  QByteArray page = "<p>Presses heard: " + QByteArray::number(tally->Presses) +
                    ", events raised: " + QByteArray::number(tally->Events) +
                    ", presses without an event: " + QByteArray::number(tally->WithoutEvent) + "</p>\n";
  QByteArray rows;
  for (const IStageTally::Stage& stage : host_.Stages()) {
    const std::string text = stage.Name + (stage.Meaning.empty() ? "" : " (" + stage.Meaning + ")") + ": ";
    rows += "<li>" + QString::fromStdString(text).toHtmlEscaped().toUtf8() +
            QByteArray::number(stage.Presses) + "</li>\n";
  }
  return rows.isEmpty() ? page : page + "<ul>\n" + rows + "</ul>\n";
}

QByteArray WebPages::Index() const {
  std::string version;
  host_.Plugin().InputGetPluginVersion(version);
  const QString about =
      QString::fromStdString(version + ", events: " + std::to_string(host_.EventIDs().size()));
  return R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>keplo-host</title>
<meta name="viewport" content="width=device-width, initial-scale=1">
<style>:root{color-scheme:light dark}body{font:1rem/1.5 sans-serif;max-width:40rem;margin:3rem auto;padding:0 1rem}</style>
</head><body><h1>Plug-ins</h1>
<ul><li><a href=")" +
         QByteArray(kPluginPath) + "\">InputKeplo</a> " + about.toHtmlEscaped().toUtf8() + "</li></ul>\n" +
         LastKey() + Presses() + "</body></html>\n";
}

QByteArray WebPages::PluginPage(const QHttpServerRequest& request) const {
  HostPageRequest page{request.url().path().toStdString(), request.query().toString().toStdString(),
                       request.body().toStdString()};
  std::int32_t browser = 0, width = 0, height = 0;
  std::string html;
  IVelmoraInputPLugin& plugin = host_.Plugin();
  if (request.method() == Method::Post) {
    plugin.InputPostHTMLPage(html, page, browser, width, height);
  } else {
    plugin.InputGetHTMLPage(html, page, browser, width, height);
  }
  return Utf8(html);
}

}  // namespace keplo::host
