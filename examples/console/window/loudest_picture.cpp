// SPDX-License-Identifier: MIT
#include "loudest_picture.h"

#include "../output_file.h"
#include "../rehearsal.h"
#include "console_view.h"
#include "veltra/platform/clock.h"
#include "veltra/ui/picture.h"

#include <map>

namespace veltra::console {

namespace {

// Time as it passes in the recording, so that the meters fall as they would while it plays.
class RehearsalClock final : public Clocks {
public:
    RehearsalClock() noexcept : m_before(Clocks::install(this)) {}
    ~RehearsalClock() override { Clocks::install(m_before); }

    void setStep(std::int64_t step) noexcept {
        m_now = Moment(seconds(static_cast<double>(step) / Rehearsal::kStepsPerSecond));
    }
    ClockReading monotonic() const noexcept override { return m_now; }
    WallTime wall() const noexcept override { return {}; }

private:
    Moment m_now;
    const Clocks* m_before;
};

using Overviews = std::map<std::string, std::shared_ptr<const Overview>>;

Overviews overviewsOf(const std::vector<std::string>& paths) {
    Overviews overviews;
    std::string problem;  // told by the rehearsal
    for (const std::string& path : paths) {
        if (const auto file = AudioFile::open(path, problem)) {
            overviews[path] = readOverview(*file, false);
        }
    }
    return overviews;
}

ConsoleState stateOf(Rehearsal& rehearsal, const Overviews& overviews) {
    ConsoleState state;
    for (StripMeter& meter : rehearsal.engine().meters()) {
        StripState strip;
        strip.key = static_cast<StripKey>(meter.id);
        strip.path = meter.path;
        const auto overview = overviews.find(meter.path);  // none: it could not be opened again
        if (overview != overviews.end()) strip.overview = overview->second;
        strip.format = *rehearsal.engine().format(meter.id);
        strip.meter = std::move(meter);
        state.strips.push_back(std::move(strip));
    }
    state.outputPeaks = rehearsal.engine().takeOutputLevels().peaks;
    state.place = rehearsal.engine().musicalPosition();
    state.seconds = static_cast<double>(rehearsal.engine().position()) / rehearsal.rate();
    state.playing = true;
    state.position = rehearsal.engine().position();
    state.rate = rehearsal.rate();
    state.outputName = "loudest moment";
    return state;
}

}  // namespace

std::vector<std::string> writeLoudestPicture(const Options& options) {
    const std::int64_t loudest = loudestStep(options.files).value_or(0);
    RehearsalClock clock;
    Rehearsal rehearsal(options.files);
    const Overviews overviews = overviewsOf(options.files);
    ConsoleDelegate nobody;
    const Size size = options.width > 0.0F
                          ? Size{options.width, options.height}
                          : ConsoleView::sizeForStrips(stateOf(rehearsal, overviews).strips);
    PictureWindow picture(size, options.scale, options.theme);
    const Rect whole{{}, picture.window().contentSize()};
    auto owned = std::make_unique<ConsoleView>(whole, nobody);
    ConsoleView& view = *owned;
    picture.window().setContentView(std::move(owned));
    std::vector<std::string> problems;
    for (const Rehearsal::Problem& problem : rehearsal.problems()) {
        problems.push_back(problem.path + ": " + problem.text);
        view.addMessage(problems.back());
    }
    while (rehearsal.stepsDone() < loudest && rehearsal.step()) {
        clock.setStep(rehearsal.stepsDone());
        view.update(stateOf(rehearsal, overviews));
    }
    const auto image = picture.draw();
    std::string refusal = whyNotWrite(options.picture, OutputKind::Picture);  // it may have come
    if (refusal.empty() && !(image && image->writePng(options.picture)))
        refusal =
            options.picture + ": the picture cannot be written; choose another name or folder";
    if (!refusal.empty()) problems.push_back(std::move(refusal));
    return problems;
}

}  // namespace veltra::console
