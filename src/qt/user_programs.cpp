#include "qt/user_programs.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

#include "qt/text.h"

namespace keplo::qt {

namespace {

/// The manual as it lies beside an installed program, and beside one that was built in its source tree.
constexpr const char* kManuals[] = {"/../share/doc/keplo/help/index.html", "/../../../docs/help/index.html"};

}  // namespace

bool OpenManual() {
  for (const char* manual : kManuals) {
    const QFileInfo page(QCoreApplication::applicationDirPath() + QLatin1String(manual));
    if (page.exists()) return QDesktopServices::openUrl(QUrl::fromLocalFile(page.canonicalFilePath()));
  }
  return false;
}

bool OpenWebPage(const std::string& address) { return QDesktopServices::openUrl(QUrl(ShownText(address))); }

}  // namespace keplo::qt
