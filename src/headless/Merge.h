// SPDX-License-Identifier: Apache-2.0
#pragma once
// A three-way merge of parameter images for version control: two people who change different
// settings of one project on two branches get both changes, field by field.
//
// Each image is read as its text form gives it (headless/Headless.h): the fields under their
// keys and the bytes no field gives. A field changed on one side only takes that side's value,
// one changed alike on both sides takes it, one changed differently is a conflict; the bytes no
// field gives merge the same way, byte by byte. The merged image is then built as import builds
// one: each dialog's typing, check and write from the merged fields, the listed bytes over the
// image the fields give, fresh check bytes. It must pass the whole check: every refusal of a
// dialog and every finding of the check is a conflict too.

#include <optional>
#include <string>
#include <vector>

#include "headless/Headless.h"

namespace gantrix::headless {

struct MergeConflict {
    std::string dialog;  // the field's dialog, "menu" or "file" as in Check; "bytes" for bytes
    std::string key;     // the field; "" for bytes and for a finding of a dialog as a whole
    int first = 0;       // bytes: the range
    int last = 0;
    // The three sides' values as the dialog shows them, or the bytes in hexadecimal; none where
    // that side's dialog does not show the field.
    std::optional<std::string> base = {}, ours = {}, theirs = {};
    int message = -1;  // the dialog's message number of a refusal or finding; -1 for none
    // "" for values changed differently on both sides; otherwise the dialog's message, or why
    // the merged fields and bytes do not go together.
    std::string text = {};
};

// "[assist] assist.watchdog: base 20, ours 30, theirs 40"
std::string Describe(const MergeConflict& conflict);

enum class MergeSide { Base, Ours, Theirs };

struct MergeUnfit {
    MergeSide side;
    std::string why;
};

struct MergeOutcome {
    std::optional<ParameterImage> image;  // none when there is a conflict or an unfit side
    std::vector<MergeConflict> conflicts;
    // Sides that are no parameter files of the context's CPU type: nothing is merged.
    std::vector<MergeUnfit> unfit;
};

MergeOutcome Merge(const ParameterImage& base, const ParameterImage& ours,
                   const ParameterImage& theirs, const DialogContext& context,
                   const EndPositions& endPositions = {});

// Why image is no parameter file of cpuType: its check bytes are those another family of CPU
// types writes (the three families' forms never agree). nullopt when they are cpuType's or
// nobody's (bytes left stale by another tool; the check names those).
std::optional<std::string> ForeignCheckBytes(const ParameterImage& image,
                                             const std::string& cpuType);

}  // namespace gantrix::headless
