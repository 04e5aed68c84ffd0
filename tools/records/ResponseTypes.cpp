// The response types `zuvo parse` knows, each tied to its sub-parser.
#include "records/ResponseTypes.h"

#include "common/ParseResponse.h"
#include "records/ResponseFields.h"

namespace zuvocli {

namespace zl = velmora::zuvolib;

namespace {

/// The response type `name` read by `Parser` into a `Record`.
template <class Parser, class Record> ResponseType type(const char* name, const char* record) {
    ResponseType t;
    t.name = name;
    t.record = record;
    t.parse = [](const std::string& document, const CipherContext& context) {
        Record filled;
        parseResponse<Parser>(document, context, filled);
        return RecordConvert<Record>::to(filled);
    };
    return t;
}

} // namespace

const std::vector<ResponseType>& responseTypes() {
    static const std::vector<ResponseType> types = {
        type<zl::PreregSubParser, zl::PreregResponseData>("prereg", "PreregResponseData"),
        type<zl::AuthSubParser, zl::AuthResponseData>("authorization", "AuthResponseData"),
        type<zl::RegSubParser, zl::RegResponseData>("register", "RegResponseData"),
        type<zl::AuthrenewSubParser, zl::AuthrenewResponseData>("authrenew",
                                                                "AuthrenewResponseData"),
        type<zl::X509ProSubParser, zl::X509ProResponseData>("x509provision", "X509ProResponseData"),
        type<zl::ECCLinkProSubParser, zl::ECCLinkProResponseData>("ecclinkprovision",
                                                                  "ECCLinkProResponseData"),
        type<zl::NPTicketProSubParser, zl::NPTicketProResponseData>("npticketprovision",
                                                                    "NPTicketProResponseData"),
        type<zl::WebApiProxySubParser, zl::WebApiProxyResponseData>("webapiproxy",
                                                                    "WebApiProxyResponseData"),
        type<PlainParser, zl::ResponseData>("plain", "ResponseData"),
    };
    return types;
}

const ResponseType& findResponseType(const std::string& name) {
    for (const ResponseType& t : responseTypes()) {
        if (name == t.name)
            return t;
    }
    throw UsageError("unknown response type '" + name +
                     "' (known types: " + joinNames(responseTypes()) + ")");
}

std::string dumpJson(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace zuvocli
