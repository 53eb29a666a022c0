#include "host/settings/prefs.h"

#include "host/messages.h"

#include "platform/headless/headless.h"

#include <gtest/gtest.h>

namespace {

class PrefsTest : public testing::Test {
protected:
    PrefsTest() { install_platform(host); }
    ~PrefsTest() override { prefs_done(); }

    HeadlessPlatform host{HeadlessOptions{}};
    HeadlessSettings& store = host.settings_in_memory();
};

TEST_F(PrefsTest, Texts) {
    ASSERT_EQ(prefs_init(), 1);
    std::string text = "before";
    EXPECT_EQ(GetValueStr("Tape", &text), 0);
    EXPECT_TRUE(store.values.empty()) << "reading creates nothing";
    const struct {
        std::string stored, read;
        int result;
    } cases[] = {{"", "", 1},
                 {"/a b.cas", "/a b.cas", 1},
                 {std::string(276, 'x'), std::string(276, 'x'), 1},
                 {std::string(277, 'x'), "before", 0}};
    hold_message_boxes();
    for (const auto& c : cases) {
        text = "before";
        EXPECT_EQ(SetValueStr("Tape", c.stored.c_str()), 1);
        prefs_done();
        EXPECT_EQ(GetValueStr("Tape", &text), c.result) << "closed, " << c.stored;
        EXPECT_EQ(text, c.read);
        ASSERT_EQ(prefs_init(), 1);
    }
    ASSERT_EQ(kept_messages().size(), 1U) << "of the text that is too long";
    EXPECT_TRUE(kept_messages()[0].line.starts_with("Tape: a path of more than 276 bytes"));
    EXPECT_EQ(SetValueStr("Tape", nullptr), 0);
    EXPECT_EQ(store.text("Tape"), std::string(1, '\0'));
    EXPECT_EQ(GetValueStr("Tape", &text), 1);
    EXPECT_EQ(text, "");
}

TEST_F(PrefsTest, WithoutAStoreTheDefaultsStayAndNothingIsKept) {
    uint32_t value = 5;
    hold_message_boxes();
    for (const bool refused : {true, false}) {
        store.available = !refused;
        EXPECT_TRUE(!refused || prefs_init() == 0);
        EXPECT_EQ(GetValueDword("Sound", &value), 0);
        EXPECT_EQ(SetValueDword("Sound", &value), 0);
        EXPECT_EQ(SetValueStr("Tape", "x"), 0);
        EXPECT_EQ(SetValueStr("Tape", nullptr), 0);
    }
    EXPECT_EQ(value, 5U);
    EXPECT_TRUE(store.values.empty());
    EXPECT_EQ(kept_messages().size(), 1U) << "reported once";
}

} // namespace
