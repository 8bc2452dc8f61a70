#include "qt/open_manual.h"

#include <dlfcn.h>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>
#include <cstring>

#include "qt/text.h"

namespace keplo::qt {

namespace {

/// Where the manual is, relative to an installed program or component, and to one built in its source tree.
constexpr const char* kManuals[] = {
    "/../share/doc/keplo/help/index.html", "/../../share/doc/keplo/help/index.html",
    "/../../../share/doc/keplo/help/index.html", "/../../../docs/help/index.html"};

/// The folder of the file with this code: a component may be elsewhere than its host.
QString OwnFolder() {
  Dl_info loaded{};
  if (dladdr(reinterpret_cast<const void*>(&OwnFolder), &loaded) == 0) return {};
  // For a program this is argv[0], which may have no folder.
  if (std::strchr(loaded.dli_fname, '/') == nullptr) return {};
  return QFileInfo(QString::fromLocal8Bit(loaded.dli_fname)).absolutePath();
}

QString FindManual() {
  for (const QString& folder : {QCoreApplication::applicationDirPath(), OwnFolder()}) {
    if (folder.isEmpty()) continue;
    for (const char* manual : kManuals) {
      if (const QFileInfo page(folder + QLatin1String(manual)); page.exists())
        return page.canonicalFilePath();
    }
  }
  return {};
}

}  // namespace

std::string OpenManual() {
  const QString manual = FindManual();
  if (manual.isEmpty()) return "its pages are not installed. Install Keplo with its documents";
  if (QDesktopServices::openUrl(QUrl::fromLocalFile(manual))) return {};
  return "no program to show web pages could be started. Set up a web browser, or open " + TypedText(manual) +
         " yourself";
}

bool OpenWebPage(const std::string& address) { return QDesktopServices::openUrl(QUrl(ShownText(address))); }

}  // namespace keplo::qt
