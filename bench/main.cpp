#include <benchmark/benchmark.h>

#include <QApplication>

/// The benchmarks of widgets draw on no screen, in the one style that is everywhere.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication::setStyle(QStringLiteral("Fusion"));
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
