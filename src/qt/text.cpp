#include "qt/text.h"

#include <QStringDecoder>

namespace keplo::qt {

QString ShownText(std::string_view text) {
  const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString decoded = decoder(bytes);
  return decoder.hasError() ? QString::fromLatin1(bytes) : decoded;
}

QString ShownCaption(std::string_view text, char accessKey) {
  QString caption = ShownText(text);
  const qsizetype place =
      accessKey == '\0' ? -1 : caption.indexOf(QLatin1Char(accessKey), 0, Qt::CaseInsensitive);
  const QString before = caption.left(place < 0 ? caption.size() : place);
  const QString after = place < 0 ? QString() : caption.mid(place);
  const auto plain = [](QString part) { return part.replace(QLatin1Char('&'), QLatin1String("&&")); };
  return place < 0 ? plain(before) : plain(before) + QLatin1Char('&') + plain(after);
}

std::string TypedText(const QString& text) { return text.toStdString(); }

}  // namespace keplo::qt
