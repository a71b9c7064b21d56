// SPDX-License-Identifier: MIT
#include "veltra/ui/cell.h"

#include "veltra/ui/keyed_coder.h"
#include "veltra/ui/testing/scripted_port.h"

namespace veltra::testing {
namespace {

TEST(CellValues, ReadTheNumberThatATextBeginsWith) {
    constexpr double kMost = std::numeric_limits<double>::max();
    const std::string nines(400, '9');
    const std::string zeros(400, '0');
    const std::pair<double, std::vector<std::string>> rows[] = {
        {12.0, {"12"}},
        {-7.5, {" -7.5 dB"}},
        {3.0, {"+3"}},
        {0.5, {".5x"}},
        {-0.25, {"-.25"}},
        {100.0, {"1e2"}},
        {0.0,
         {"", "   ", "dB", "info", "Nandu", "-inf", "+-5", "--5", ".", "+", "0x10", "1e-999",
          "1E-99999999999999999999", "0." + zeros + "1"}},
        {kMost,
         {nines, nines + ".5", "0." + zeros + "1E+900", "1e999", zeros + nines,
          "0." + zeros + "1e900", "1e99999999999999999999"}},
        {-kMost, {"-" + nines, "-1e999"}}};
    for (const auto& [number, texts] : rows)
        for (const std::string& text : texts)
            EXPECT_EQ(Cell(text).doubleValue(), number) << text.substr(0, 30);
    EXPECT_EQ(Cell(nines).intValue(), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(Cell("-" + nines).intValue(), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Cell("-2.9").intValue(), -2);
    Cell cell;
    cell.setDoubleValue(NAN);
    EXPECT_EQ(cell.intValue(), 0);
    cell.setDoubleValue(0.1);
    EXPECT_EQ(cell.stringValue(), "0.1");
}

TEST(CellValues, AreTheSameKindOfThingAfterAnArchive) {
    const ScriptedPort port;
    Cell cell("007");
    const auto copied = [&cell] {
        KeyedCoder coder;
        cell.encodeWithCoder(coder);
        Cell read;
        read.decodeWithCoder(coder);
        return read.stringValue();
    };
    EXPECT_EQ(copied(), "007");
    cell.setIntValue(-3);
    EXPECT_EQ(copied(), "-3");
    cell.setDoubleValue(1.0 / 3.0);
    EXPECT_EQ(copied(), cell.stringValue());
}

TEST(CellDrawing, IsAskedForByWhatChangesAndCutOffAtTheFrame) {
    ScriptedPort port;
    Shown<View> host(Rect{{}, {100, 50}});
    Cell cell("text");
    cell.calculateInternalsFromCellFrame({{10, 10}, {30, 20}}, host.view);
    host.port.invalid.clear();
    cell.setHighlighted(false);
    cell.setAlignment(TextAlignment::Left);
    EXPECT_TRUE(host.port.invalid.empty());
    cell.setAlignment(TextAlignment::Right);
    cell.setBordered(true);
    EXPECT_EQ(host.port.invalid.size(), 2U);
    EXPECT_EQ(host.port.invalid[0], (Rect{{10, 20}, {30, 20}}));
    RecordingCanvas surface;
    Canvas canvas(surface);
    cell.drawWithFrame(canvas, {{5, 5}, {30, 20}}, host.view);
    ASSERT_EQ(surface.calls.size(), 2U);
    EXPECT_EQ(surface.calls[1].clip, (Rect{{5, 5}, {30, 20}}));
    EXPECT_EQ(cell.cellFrame(), (Rect{{5, 5}, {30, 20}}));
    EXPECT_EQ(cell.cellSize(), (Size{26, 17}));
}

}  // namespace
}  // namespace veltra::testing
