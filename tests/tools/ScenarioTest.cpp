// Scenario files: faults refused with one line naming the place, and rules
// found in file order by message and call.
#include "server/Scenario.h"
#include "common/Errors.h"

#include <gtest/gtest.h>

#include <string>

using namespace zuvocli;

namespace {

TEST(Scenario, FaultsNameTheirPlace) {
    // A case that does not start with "{" or "[" holds the rest of one ping rule.
    const struct {
        std::string text;
        const char* error;
    } cases[] = {
        {R"({"rules": [)", "s.json: not JSON: "},
        {"[]", "s.json: expected an object with \"rules\", got []"},
        {R"({"rule": []})", "s.json: rule: unknown key (keys: rules, comment)"},
        {"{}", "s.json: rules: expected an array of rules"},
        {R"({"rules": [7]})", "s.json: rules[0]: expected an object, got 7"},
        {R"({"rules": [{"message": "ping", "delay": 5}, {"message": "pong", "delay": 1}]})",
         "s.json: rules[1].message: unknown message \"pong\" (messages: ping, preregister,"},
        {R"("stauts": 503)", "s.json: rules[0].stauts: unknown key (keys: message, call, refuse,"},
        {R"("status": 200)",
         "s.json: rules[0].status: expected an HTTP error status (400 to 599), got 200"},
        {R"("status": "503")",
         "rules[0].status: expected an HTTP error status (400 to 599), got \"503\""},
        {R"("delay": -1)", "rules[0].delay: expected a whole number from 0 to 600000, got -1"},
        {R"("call": 0, "delay": 1)",
         "rules[0].call: expected a whole number from 1 to 1000000, got 0"},
        {R"("truncate": 18446744073709551615)",
         "rules[0].truncate: expected a whole number from 0 to"},
        {R"("wrongKey": 1)", "rules[0].wrongKey: expected true or false, got 1"},
        {R"("downloadables": 9)",
         "rules[0].downloadables: only an authorization answer has a catalogue"},
        {R"("status": 500, "truncate": 3)",
         "rules[0].status: an HTTP error status sends no document"},
        {R"("refuse": {"cod": 1})", "rules[0].refuse.cod: unknown key (keys: code, userText)"},
        {R"("call": 2)", "rules[0]: the rule changes nothing"},
        {R"({"rules": [{"delay": 2}]})", "rules[0]: a rule needs \"message\""},
    };
    for (const auto& c : cases) {
        try {
            Scenario::parse(c.text[0] == '{' || c.text[0] == '['
                                ? c.text
                                : R"({"rules": [{"message": "ping", )" + c.text + "}]}",
                            "s.json");
            ADD_FAILURE() << "accepted: " << c.text;
        } catch (const UsageError& e) {
            const std::string message = e.what();
            EXPECT_NE(message.find(c.error), std::string::npos) << message;
            EXPECT_EQ(message.find('\n'), std::string::npos) << message;
        }
    }
}

TEST(Scenario, FirstMatchingRuleWins) {
    const Scenario scenario = Scenario::parse(R"({"comment": "x", "rules": [
        {"message": "ping", "call": 2, "status": 503, "comment": "second ping fails"},
        {"message": "ping", "delay": 10, "wrongKey": true},
        {"message": "ping", "status": 500}
    ]})",
                                              "s.json");
    ASSERT_EQ(scenario.size(), 3u);
    EXPECT_EQ(scenario.find("ping", 2)->status, 503);
    const ScenarioRule* every = scenario.find("ping", 3);
    ASSERT_NE(every, nullptr);
    EXPECT_EQ(every->what, "delay+wrongKey");
    EXPECT_TRUE(every->variation.otherKey);
    EXPECT_EQ(scenario.find("playdata", 1), nullptr);
}

} // namespace
