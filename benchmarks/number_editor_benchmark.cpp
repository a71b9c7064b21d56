// SPDX-License-Identifier: MIT
// Number editor: what it costs to find the largest font for its width, among 198 sizes, against
// measuring the same strings once at one size with the toolkit.
#include "benchmarks/ratios.h"
#include "veltra/controls/number_editor/number_editor_control.h"
#include "veltra/qt/qt_port.h"

#include <QApplication>
#include <QFontMetricsF>

#include <benchmark/benchmark.h>

namespace {

using namespace veltra;

constexpr double kHalfAMillisecond = 500'000.0;

void fontFitting(benchmark::State& state) {
    DfNumberEditorControl editor({{}, {160.0F, 26.0F}});
    editor.setEditorCellCount(3);
    for (auto _ : state)
        editor.recalculateFontSize();
}
BENCHMARK(fontFitting);

// Nothing fits: all sizes were in question.
void fontFittingInNoRoom(benchmark::State& state) {
    DfNumberEditorControl editor({{}, {1.0F, 26.0F}});
    editor.setEditorCellCount(3);
    for (auto _ : state)
        editor.recalculateFontSize();
}
BENCHMARK(fontFittingInNoRoom);

void oneSizeByTheToolkit(benchmark::State& state) {
    const QString strings[] = {QStringLiteral(".00"), QStringLiteral("/"), QStringLiteral(".00"),
                               QStringLiteral("/"), QStringLiteral(".00")};
    for (auto _ : state) {
        QFont font = QApplication::font();
        font.setPointSizeF(12.0);
        const QFontMetricsF metrics(font);
        double width = 0.0;
        for (const QString& string : strings)
            width += metrics.horizontalAdvance(string);
        benchmark::DoNotOptimize(width);
    }
}
BENCHMARK(oneSizeByTheToolkit);

constexpr Ratio kRatios[] = {
    {"fitting a font / one size by the toolkit, and 0.5 ms", "fontFitting", "oneSizeByTheToolkit",
     1.0, kHalfAMillisecond},
    {"the same in no room", "fontFittingInNoRoom", "oneSizeByTheToolkit", 1.0, kHalfAMillisecond},
};

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    installQtPort();
    return runRatios(argc, argv, kRatios);
}
