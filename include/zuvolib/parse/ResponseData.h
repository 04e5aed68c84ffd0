// The common part of every response record.
#ifndef ZUVOLIB_PARSE_RESPONSEDATA_H
#define ZUVOLIB_PARSE_RESPONSEDATA_H

#include <string>
#include <vector>

namespace velmora {
namespace zuvolib {

/// What every response says in its envelope and header. Filled by the
/// response parsers; each message's record derives from it. The parsers
/// never clear the record: fields the document does not mention keep what
/// the caller put there. Numbers are passed on as the server writes them,
/// without unit or scaling.
struct ResponseData {
    /// Kinds of logs the server asks the device to upload.
    enum LogCategoryType {
        CATEGORY_APPLICATION = 0, ///< "application"
        CATEGORY_MOVIELOG = 1,    ///< "movielog"
        CATEGORY_CRASH = 2,       ///< "crash"
        CATEGORY_PERFORMANCE = 3  ///< "performance"
    };

    /// Caller-owned values the parsers never read or write, free for the
    /// caller's bookkeeping (for example which exchange a record belongs to).
    int callerTag = 0;
    int callerFlags = 0; ///< see `callerTag`

    unsigned int serverTime = 0; ///< "zuvo:servertime" in the header payload
    unsigned int clientTime = 0; ///< "zuvo:clienttime" in the header payload
    /// Attribute "version" of "response" or the text of "protocolversion",
    /// whichever comes later in the document.
    std::string protocolVersion;
    std::string method;                     ///< attribute "method" of "result"
    bool success = false;                   ///< true only for the exact text "true" of "success"
    int code = 0;                           ///< "code"
    int actionId = 0;                       ///< "actionid"; set to 0 by a successful "success"
    std::string userText;                   ///< "usertext"
    int retryControl = 0;                   ///< "retrycontrol"
    int minTimeout = 0;                     ///< "mintimeout"
    int logInterval = 0;                    ///< "loginterval"
    int lowFrequencyPollInterval = 0;       ///< "lowfrequencypollinterval"
    int mediumFrequencyPollInterval = 0;    ///< "mediumfrequencypollinterval"
    int highFrequencyPollInterval = 0;      ///< "highfrequencypollinterval"
    int highToMediumPollSwitchInterval = 0; ///< "hightomediumpollswitchinterval"
    int mediumToLowPollSwitchInterval = 0;  ///< "mediumtolowpollswitchinterval"
    std::string testDriverIpAddr;           ///< "testdriveripaddr"
    std::string logLevel;                   ///< "loglevel"
    /// One entry per known child of "loguploads", in document order.
    std::vector<LogCategoryType> logUploads;
    std::string supportPhone; ///< "supportphone"
};

} // namespace zuvolib
} // namespace velmora

#endif
