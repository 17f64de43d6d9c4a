#include <gtest/gtest.h>

#include <random>

#include "headless/Headless.h"
#include "headless/Page.h"
#include "platform/rkcmnt/DeviceTable.h"
#include "support/core/TestSupport.h"

namespace gantrix::headless {
namespace {

// Images a dialog may meet: the default image with bytes of the dialog regions, whole
// words and stray bytes anywhere changed at random.
ParameterImage RandomImage(const std::string& cpu, std::mt19937& random) {
    ParameterImage image = test::DefaultImage(cpu);
    std::uniform_int_distribution<int> count(1, 40);
    std::uniform_int_distribution<int> anywhere(0, kImageSize - 1);
    std::uniform_int_distribution<int> settings(0, 1023);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<int> small(0, 2100);
    for (int n = count(random); n > 0; --n) {
        switch (random() % 4) {
            case 0:
                image[anywhere(random)] = static_cast<uint8_t>(byte(random));
                break;
            case 1:
                image[settings(random)] = static_cast<uint8_t>(byte(random));
                break;
            case 2:  // a plausible number into a word of the settings
                image.SetParamWord(small(random), settings(random) & ~1);
                break;
            default:  // an erased word
                image.SetParamWord(kErased, settings(random) & ~1);
                break;
        }
    }
    return image;
}

TEST(TextForm, ExportThenImportGivesTheImageBackByteForByte) {
    std::mt19937 random(20261122);
    for (std::string_view code : platform::kCpuTypes) {
        const std::string cpu(code);
        SCOPED_TRACE(cpu);
        const DialogContext context = HeadlessContext(cpu);
        std::vector<ParameterImage> images = {test::DefaultImage(cpu)};
        for (int i = 0; i < 200; ++i) images.push_back(RandomImage(cpu, random));
        for (const ParameterImage& image : images) {
            const std::string text = ExportText(image, context);
            const ImportOutcome back = ImportText(text, context);
            ASSERT_TRUE(back.errors.empty()) << back.errors.front() << "\n" << text;
            ASSERT_TRUE(back.image.has_value());
            ASSERT_EQ(test::DifferingBytes(*back.image, image), std::vector<int>{}) << text;
        }
        // The fields alone give the default image: nothing is listed as bytes.
        const std::string text = ExportText(images.front(), context);
        EXPECT_EQ(text.substr(text.find("[bytes]")), "[bytes]\n");
    }
}

}  // namespace
}  // namespace gantrix::headless
