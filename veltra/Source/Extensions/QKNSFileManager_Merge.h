// SPDX-License-Identifier: MIT
// Merges one folder into another: what is missing there is copied, what is there is replaced or
// kept, and what is only there stays.
//
//   struct Log : veltra::MergeHandler { ... };
//   Log log;
//   if (!veltra::mergePath("/media/disc/Kits", "/home/ann/Kits", true, &log)) { ... }
//
// Whoever reads a file of the target meanwhile finds the old one or the new one, never a part: each
// is copied under a hidden name in the same folder and then renamed. When the process dies in the
// middle, such a copy (".veltra-" and numbers) may be left.
#pragma once

#include "veltra/export.h"

#include <cstdint>
#include <string_view>
#include <system_error>

namespace veltra {

// Something of the source that is not in the target, or not as it should be.
struct MergeProblem {
    // What kept an item from being merged, or from being merged in full.
    enum class Reason : std::uint8_t {
        Failed,             // `error` says why; the item was left out. Of a folder 200 levels down
                            // only what is in it is: std::errc::filename_too_long
        KindsDiffer,        // a file, a folder, a package and a link do not replace one another
        NotCopied,          // neither a file nor a folder nor a link: a pipe, a device
        InsideItself,       // the target lies in the source, or is the source, or is a package with
                            // the source in it
        PackageIncomplete,  // something in it was told before; the whole package was left out
        AttributesNotKept,  // it was copied, but permissions or times are not those of the source
        LeftBehind,         // a hidden item could not be removed again, or what stood in the target
                            // is there now; `leftBehind` is its path
    };

    std::string_view sourcePath;  // the views are good until the handler returns

    // Where the item was to go.
    std::string_view targetPath;

    // Of several that fit, what was found first.
    Reason reason = Reason::Failed;

    // What the system said; no error when it was not the system that refused.
    std::error_code error;

    // The hidden item that could not be removed; empty but for LeftBehind.
    std::string_view leftBehind;
};

// What a handler wants: that the merge goes on to the next item, or ends here.
enum class MergeAnswer : std::uint8_t { GoOn, Stop };

// Hears about a merge while it runs, on the thread that called for it. Each function may stop the
// merge; what was merged until then stays.
class VELTRA_EXPORT MergeHandler {
public:
    virtual ~MergeHandler();

    // Before an item of the source is looked at. The default goes on.
    virtual MergeAnswer willMerge(std::string_view sourcePath,
                                  std::string_view targetPath) noexcept;

    // The default goes on with the next item.
    virtual MergeAnswer couldNotMerge(const MergeProblem& problem) noexcept;
};

// Merges the item at `path` with what is at `toPath`; the folder of `toPath` must exist. A source
// that is a file or link itself is merged likewise. `replaceExistingFilesWithSource` decides about
// files, links and packages (isFilePackageAtPath()) that both have: true replaces those of the
// target, packages as a whole, false keeps them. Folders that both have keep the target's
// permissions; all that is new gets permissions and times of the source, without set-id bits. Links
// are copied as links, and never followed, the two paths' own last steps included. The source is
// never changed.
//
// Returns true when the target has everything that was asked for. Otherwise `handler`, which may be
// null, was told of each item that is not there, and the rest was merged. Nothing at all is written
// when the target lies inside the source.
// Thread: any. Realtime-safe: no.
VELTRA_EXPORT bool mergePath(std::string_view path, std::string_view toPath,
                             bool replaceExistingFilesWithSource, MergeHandler* handler) noexcept;

}  // namespace veltra
