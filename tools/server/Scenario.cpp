// Reading scenario files. Every key of a rule has a row in RULE_KEYS that
// checks its value and stores it; the checks name the place of a fault as
// "file: rules[2].key: ...".
#include "server/Scenario.h"

#include "common/Errors.h"
#include "common/Names.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <functional>
#include <iterator>

namespace zuvocli {
namespace {

/// The message names a rule may name: those the scripted server answers.
const char* const SCENARIO_MESSAGES[] = {
    "ping",         "preregister", "register",      "authenticationrenewal", "authorization",
    "playdata",     "logblob",     "x509provision", "ecclinkprovision",      "npticketprovision",
    "webapienroll", "webapiproxy"};

using json = nlohmann::ordered_json;

[[noreturn]] void fault(const std::string& place, const std::string& what) {
    throw UsageError(place + ": " + what);
}

/// `value` as JSON text, shortened for an error line.
std::string shown(const json& value) {
    std::string text = value.dump();
    return text.size() > 40 ? text.substr(0, 37) + "..." : text;
}

/// A whole number from `low` to `high`.
long long whole(const json& value, const std::string& place, long long low, long long high) {
    const bool integer = value.is_number_integer();
    // Unsigned values beyond the signed range are out of every range here.
    if (!integer ||
        (value.is_number_unsigned() &&
         value.get<unsigned long long>() > static_cast<unsigned long long>(high)) ||
        value.get<long long>() < low || value.get<long long>() > high)
        fault(place, "expected a whole number from " + std::to_string(low) + " to " +
                         std::to_string(high) + ", got " + shown(value));
    return value.get<long long>();
}

bool boolean(const json& value, const std::string& place) {
    if (!value.is_boolean())
        fault(place, "expected true or false, got " + shown(value));
    return value.get<bool>();
}

std::string text(const json& value, const std::string& place) {
    if (!value.is_string())
        fault(place, "expected a string, got " + shown(value));
    return value.get<std::string>();
}

void readMessage(const json& value, const std::string& place, ScenarioRule& rule) {
    rule.message = text(value, place);
    const char* const* end = std::end(SCENARIO_MESSAGES);
    if (std::find(std::begin(SCENARIO_MESSAGES), end, rule.message) == end)
        fault(place, "unknown message " + shown(value) +
                         " (messages: " + joinNames(SCENARIO_MESSAGES) + ")");
}

void readRefusal(const json& value, const std::string& place, ScenarioRule& rule) {
    if (!value.is_object())
        fault(place, "expected an object with \"code\" and \"userText\", got " + shown(value));
    ResponseVariation& variation = rule.variation;
    variation.refuse = true;
    variation.code = -1;
    for (auto item = value.begin(); item != value.end(); ++item) {
        const std::string inner = place + "." + item.key();
        if (item.key() == "code") {
            variation.code = static_cast<int>(whole(*item, inner, -2147483647, 2147483647));
        } else if (item.key() == "userText") {
            variation.userText = text(*item, inner);
        } else {
            fault(inner, "unknown key (keys: code, userText)");
        }
    }
}

/// One row per rule key: its name and how to read its value.
struct RuleKey {
    const char* name;
    std::function<void(const json&, const std::string&, ScenarioRule&)> read;
};

const RuleKey RULE_KEYS[] = {
    {"message", readMessage},
    {"call",
     [](const json& v, const std::string& place, ScenarioRule& rule) {
         rule.call = static_cast<unsigned int>(whole(v, place, 1, 1000000));
     }},
    {"refuse", readRefusal},
    {"truncate",
     [](const json& v, const std::string& place, ScenarioRule& rule) {
         rule.truncate = true;
         rule.keepBytes = static_cast<std::size_t>(whole(v, place, 0, 1 << 30));
     }},
    {"wrongKey", [](const json& v, const std::string& place,
                    ScenarioRule& rule) { rule.variation.otherKey = boolean(v, place); }},
    {"reject", [](const json& v, const std::string& place,
                  ScenarioRule& rule) { rule.variation.dropMethod = boolean(v, place); }},
    {"downloadables",
     [](const json& v, const std::string& place, ScenarioRule& rule) {
         rule.variation.downloadables = static_cast<std::size_t>(whole(v, place, 1, 100000));
     }},
    {"delay",
     [](const json& v, const std::string& place, ScenarioRule& rule) {
         rule.delayMs = static_cast<unsigned int>(whole(v, place, 0, 600000));
     }},
    {"status",
     [](const json& v, const std::string& place, ScenarioRule& rule) {
         const json::number_integer_t low = 400, high = 599;
         if (!v.is_number_integer() || v.get<long long>() < low || v.get<long long>() > high)
             fault(place, "expected an HTTP error status (400 to 599), got " + shown(v));
         rule.status = v.get<int>();
     }},
    {"comment", [](const json& v, const std::string& place, ScenarioRule&) { text(v, place); }},
};

ScenarioRule readRule(const json& value, const std::string& place) {
    if (!value.is_object())
        fault(place, "expected an object, got " + shown(value));
    ScenarioRule rule;
    for (auto item = value.begin(); item != value.end(); ++item) {
        const std::string inner = place + "." + item.key();
        const RuleKey* key = std::find_if(std::begin(RULE_KEYS), std::end(RULE_KEYS),
                                          [&](const RuleKey& k) { return item.key() == k.name; });
        if (key == std::end(RULE_KEYS))
            fault(inner, "unknown key (keys: " + joinNames(RULE_KEYS) + ")");
        key->read(*item, inner, rule);
        if (key->name != std::string("message") && key->name != std::string("call") &&
            key->name != std::string("comment"))
            rule.what += (rule.what.empty() ? "" : "+") + item.key();
    }
    if (rule.message.empty())
        fault(place, "a rule needs \"message\"");
    const ResponseVariation& v = rule.variation;
    const bool changesDocument =
        v.refuse || v.otherKey || v.dropMethod || v.downloadables || rule.truncate;
    if (rule.status && changesDocument)
        fault(place + ".status", "an HTTP error status sends no document; drop the other changes");
    if (v.downloadables && rule.message != "authorization")
        fault(place + ".downloadables", "only an authorization answer has a catalogue");
    if (rule.what.empty())
        fault(place, "the rule changes nothing (give refuse, truncate, wrongKey, reject, "
                     "downloadables, delay or status)");
    return rule;
}

} // namespace

Scenario Scenario::parse(const std::string& text, const std::string& origin) {
    json document;
    try {
        document = json::parse(text);
    } catch (const json::parse_error& e) {
        // The library's text names the line and column.
        fault(origin, std::string("not JSON: ") + e.what());
    }
    if (!document.is_object())
        fault(origin, "expected an object with \"rules\", got " + shown(document));
    Scenario scenario;
    for (auto item = document.begin(); item != document.end(); ++item) {
        if (item.key() == "comment") {
            zuvocli::text(*item, origin + ": comment");
        } else if (item.key() != "rules") {
            fault(origin + ": " + item.key(), "unknown key (keys: rules, comment)");
        }
    }
    const auto rules = document.find("rules");
    if (rules == document.end() || !rules->is_array())
        fault(origin + ": rules", "expected an array of rules");
    for (std::size_t i = 0; i < rules->size(); ++i)
        scenario.rules.push_back(
            readRule((*rules)[i], origin + ": rules[" + std::to_string(i) + "]"));
    return scenario;
}

int Scenario::messageIndex(const std::string& message) {
    for (std::size_t i = 0; i < sizeof SCENARIO_MESSAGES / sizeof SCENARIO_MESSAGES[0]; ++i) {
        if (message == SCENARIO_MESSAGES[i])
            return static_cast<int>(i);
    }
    return -1;
}

const ScenarioRule* Scenario::find(const std::string& message, unsigned int call) const {
    for (const ScenarioRule& rule : rules) {
        if (rule.message == message && (rule.call == 0 || rule.call == call))
            return &rule;
    }
    return nullptr;
}

} // namespace zuvocli
