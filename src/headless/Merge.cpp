// SPDX-License-Identifier: Apache-2.0
#include "headless/Merge.h"

#include <array>
#include <cstdio>
#include <map>

#include "store/CheckSum.h"

namespace gantrix::headless {
namespace {

using Byte = std::optional<uint8_t>;

// One side as its text form gives it.
struct TextSide {
    ParsedText text;
    std::map<std::string, std::string> values;
    std::array<Byte, kImageSize> listed;  // the bytes no field gives, by index
    std::array<uint8_t, kImageSize> fieldsGive{};
};

TextSide Read(const ParameterImage& image, const DialogContext& context) {
    TextSide side;
    side.text = ParseText(ExportText(image, context));
    for (const TextField& f : side.text.fields) side.values[f.key] = f.value;
    for (const TextBytes& b : side.text.bytes) {
        for (int i = b.first; i <= b.last; ++i) {
            side.listed[i] = b.value[i - b.first];
            side.fieldsGive[i] = b.fieldsGive[i - b.first];
        }
    }
    return side;
}

std::optional<std::string> ValueOf(const TextSide& side, const std::string& key) {
    const auto found = side.values.find(key);
    if (found == side.values.end()) return std::nullopt;
    return found->second;
}

// The three-way rule: which side's value the merge takes, or nullopt for a conflict.
template <typename T>
std::optional<MergeSide> Take(const T& base, const T& ours, const T& theirs) {
    if (ours == theirs || theirs == base) return MergeSide::Ours;
    if (ours == base) return MergeSide::Theirs;
    return std::nullopt;
}

std::string Hex(const std::vector<uint8_t>& bytes) {
    std::string text;
    for (const uint8_t b : bytes) {
        char buffer[4];
        std::snprintf(buffer, sizeof buffer, "%02X", b);
        text += (text.empty() ? "" : " ") + std::string(buffer);
    }
    return text;
}

std::string DialogOfKey(const std::string& key) {
    return key.substr(0, key.find('.'));
}

class Merger {
  public:
    Merger(const ParameterImage& base, const ParameterImage& ours, const ParameterImage& theirs,
           const DialogContext& context)
        : images_{&base, &ours, &theirs},
          sides_{Read(base, context), Read(ours, context), Read(theirs, context)} {}

    // The fields of the merge in the order the dialogs take them: ours', then those only
    // theirs shows (the rows of a module count raised there).
    std::vector<TextField> Fields() {
        std::vector<TextField> merged;
        std::vector<std::string> keys;
        for (const TextField& f : Side(MergeSide::Ours).text.fields) keys.push_back(f.key);
        for (const TextField& f : Side(MergeSide::Theirs).text.fields) {
            if (!Side(MergeSide::Ours).values.contains(f.key)) keys.push_back(f.key);
        }
        for (const std::string& key : keys) {
            const auto [base, ours, theirs] = Values(key);
            const auto take = Take(base, ours, theirs);
            if (!take) {
                conflicts_.push_back({DialogOfKey(key), key, 0, 0, base, ours, theirs});
                continue;
            }
            const auto value = take == MergeSide::Ours ? ours : theirs;
            if (value) merged.push_back({key, *value, 0});
        }
        return merged;
    }

    // Puts the merged bytes no field gives over fieldsImage; the check bytes are left to be
    // computed, the network sum too where no side lists it. Returns whether it is computed.
    bool PutBytes(ParameterImage& image) {
        std::vector<int> differ, overridden;
        bool networkSumListed = false;
        for (int i = 0; i < kImageSize; ++i) {
            if (i >= kCheckBytes && i < kCheckBytes + 3) continue;
            const Byte& base = Side(MergeSide::Base).listed[i];
            const auto take =
                Take(base, Side(MergeSide::Ours).listed[i], Side(MergeSide::Theirs).listed[i]);
            if (!take) {
                differ.push_back(i);
                continue;
            }
            const Byte& value = Side(*take).listed[i];
            if (!value) continue;
            const bool sum = i >= kNetworkSum && i < kNetworkSum + 3;
            networkSumListed = networkSumListed || sum;
            if (sum || image[i] == Side(*take).fieldsGive[i]) {
                image[i] = *value;
            } else if (value != base) {
                // A byte set on one side where the merged fields now give another.
                overridden.push_back(i);
            }
        }
        AddByteConflicts(differ, "");
        AddByteConflicts(overridden, "the merged fields give other bytes there");
        return !networkSumListed;
    }

    std::vector<MergeConflict>& Conflicts() { return conflicts_; }

    // A refusal or finding of the merged image as a conflict, with the three values of its key.
    void Add(const Violation& v) {
        const auto [base, ours, theirs] =
            v.key.empty() ? std::array<std::optional<std::string>, 3>{} : Values(v.key);
        conflicts_.push_back({v.dialog, v.key, 0, 0, base, ours, theirs, v.message, v.text});
    }

  private:
    const TextSide& Side(MergeSide side) const { return sides_[static_cast<size_t>(side)]; }

    std::array<std::optional<std::string>, 3> Values(const std::string& key) const {
        return {ValueOf(sides_[0], key), ValueOf(sides_[1], key), ValueOf(sides_[2], key)};
    }

    // Runs of indices as conflicts of bytes, each cut at a multiple of 16 as the text form's
    // lines are.
    void AddByteConflicts(const std::vector<int>& indices, const std::string& text) {
        for (size_t i = 0; i < indices.size();) {
            size_t j = i;
            while (j + 1 < indices.size() && indices[j + 1] == indices[j] + 1 &&
                   indices[j + 1] % 16 != 0) {
                ++j;
            }
            MergeConflict c{"bytes", "", indices[i], indices[j]};
            std::optional<std::string>* values[3] = {&c.base, &c.ours, &c.theirs};
            for (size_t s = 0; s < 3; ++s) {
                const auto& bytes = images_[s]->bytes();
                *values[s] = Hex({bytes.begin() + c.first, bytes.begin() + c.last + 1});
            }
            c.text = text;
            conflicts_.push_back(std::move(c));
            i = j + 1;
        }
    }

    std::array<const ParameterImage*, 3> images_;
    std::array<TextSide, 3> sides_;
    std::vector<MergeConflict> conflicts_;
};

std::string Shown(const std::optional<std::string>& value) {
    if (!value) return "(none)";
    return value->empty() ? "\"\"" : QuoteValue(*value);
}

}  // namespace

std::string Describe(const MergeConflict& c) {
    std::string text = "[" + c.dialog + "] ";
    if (c.dialog == "bytes") {
        text += std::to_string(c.first) + ".." + std::to_string(c.last) + ":";
    } else if (!c.key.empty()) {
        text += c.key + ":";
    }
    if (!c.text.empty()) text += (text.back() == ' ' ? "" : " ") + c.text;
    if (c.dialog == "bytes" || !c.key.empty()) {
        const std::string values =
            "base " + Shown(c.base) + ", ours " + Shown(c.ours) + ", theirs " + Shown(c.theirs);
        text += c.text.empty() ? " " + values : " (" + values + ")";
    }
    return text;
}

std::optional<std::string> ForeignCheckBytes(const ParameterImage& image,
                                             const std::string& cpuType) {
    static const struct {
        const char* cpu;
        const char* family;
    } kFamilies[] = {{"A3 ", "A0J, A0H, A1S, A1, A2C, A2, A3 or A3H"},
                     {"A3A", "A2A or A3A"},
                     {"A3U", "A2U, A3U or A4U"}};
    for (const auto& f : kFamilies) {
        ParameterImage summed = image;
        SetCheckSum(summed, f.cpu, false);
        const bool theirs = summed[kCheckBytes] == image[kCheckBytes] &&
                            summed[kCheckBytes + 1] == image[kCheckBytes + 1] &&
                            summed[kCheckBytes + 2] == image[kCheckBytes + 2];
        if (theirs && CheckSumFormOf(f.cpu) != CheckSumFormOf(cpuType)) {
            return std::string("its check bytes are those of an ") + f.family + ", not of \"" +
                   cpuType + "\"";
        }
    }
    return std::nullopt;
}

MergeOutcome Merge(const ParameterImage& base, const ParameterImage& ours,
                   const ParameterImage& theirs, const DialogContext& context,
                   const EndPositions& endPositions) {
    MergeOutcome outcome;
    const ParameterImage* images[3] = {&base, &ours, &theirs};
    for (const MergeSide side : {MergeSide::Base, MergeSide::Ours, MergeSide::Theirs}) {
        if (auto why = ForeignCheckBytes(*images[static_cast<int>(side)], context.CpuType)) {
            outcome.unfit.push_back({side, *why});
        }
    }
    if (!outcome.unfit.empty()) return outcome;

    Merger merger(base, ours, theirs, context);
    const std::vector<TextField> fields = merger.Fields();
    if (!merger.Conflicts().empty()) {
        outcome.conflicts = std::move(merger.Conflicts());
        return outcome;
    }
    FieldsImage typed = TypeFields(fields, context);
    for (const Violation& v : typed.refusals) merger.Add(v);
    ParameterImage image = typed.image;
    const bool networkSumComputed = merger.PutBytes(image);
    if (merger.Conflicts().empty()) {
        ParameterImage summed = image;
        SetCheckSum(summed, context.CpuType, true);
        for (int i = 0; i < 3; ++i) {
            image[kCheckBytes + i] = summed[kCheckBytes + i];
            if (networkSumComputed) image[kNetworkSum + i] = summed[kNetworkSum + i];
        }
        for (const Violation& v : Check(image, context, endPositions)) merger.Add(v);
    }
    outcome.conflicts = std::move(merger.Conflicts());
    if (outcome.conflicts.empty()) outcome.image = image;
    return outcome;
}

}  // namespace gantrix::headless
