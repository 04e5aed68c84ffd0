// The messages `zuvo build` knows, each tied to its record and builder.
#include "records/RequestMessages.h"

#include "records/RequestFields.h"

namespace zuvocli {
namespace zl = velmora::zuvolib;

namespace {

typedef zl::RequestBuilder Builder;

/// Fills a default record `R` from the input and the settings.
template <class R> R makeRecord(const FieldValue* input, const std::vector<std::string>& settings) {
    R record;
    if (input != nullptr && input->kind() != FieldValue::Kind::Null)
        RecordConvert<R>::from(*input, record, FieldPath());
    for (const std::string& setting : settings)
        applySetting(record, setting);
    return record;
}

/// The message's name, record, fields and answer; the caller adds the
/// builder.
template <class R>
RequestMessage describe(const char* name, const char* record, bool takesRc, const char* answer) {
    RequestMessage m;
    m.name = name;
    m.record = record;
    m.takesRc = takesRc;
    m.answer = answer;
    m.normalize = [](const Json& fields) {
        const JsonFieldValue input(fields);
        return RecordConvert<R>::to(makeRecord<R>(&input, std::vector<std::string>()));
    };
    // Every record starts with the header fields, which alone make a ping.
    const FieldTable<R>& table = fieldTable<R>();
    const std::size_t header = fieldTable<zl::PingRequestData>().size();
    m.ownFields =
        joinNames(FieldTable<R>(table.begin() + static_cast<std::ptrdiff_t>(header), table.end()));
    return m;
}

/// A message whose builder takes the record and the context.
template <class R>
RequestMessage message(const char* name, const char* record, const char* answer) {
    RequestMessage m = describe<R>(name, record, false, answer);
    m.buildFrom = [](const FieldValue* input, const std::vector<std::string>& settings,
                     const std::string&, const CipherContext& context, const BuilderRunner& run) {
        const R record = makeRecord<R>(input, settings);
        std::string document;
        run([&] { document = Builder::buildRequest(record, context); });
        return document;
    };
    return m;
}

/// A message whose builder also takes the caller's `rc` text.
template <class R>
RequestMessage messageWithRc(const char* name, const char* record, const char* answer) {
    RequestMessage m = describe<R>(name, record, true, answer);
    m.buildFrom = [](const FieldValue* input, const std::vector<std::string>& settings,
                     const std::string& rc, const CipherContext& context,
                     const BuilderRunner& run) {
        const R record = makeRecord<R>(input, settings);
        std::string document;
        run([&] { document = Builder::buildRequest(record, context, rc); });
        return document;
    };
    return m;
}

} // namespace

std::string RequestMessage::build(const Json& input, const std::vector<std::string>& settings,
                                  const std::string& rc, const CipherContext& context) const {
    const JsonFieldValue fields(input);
    return buildFrom(&fields, settings, rc, context,
                     [](const std::function<void()>& builder) { builder(); });
}

const std::vector<RequestMessage>& requestMessages() {
    static const std::vector<RequestMessage> messages = {
        message<zl::PingRequestData>("ping", "PingRequestData", "plain"),
        message<zl::PreregRequestData>("prereg", "PreregRequestData", "prereg"),
        message<zl::AuthRequestData>("authorization", "AuthRequestData", "authorization"),
        messageWithRc<zl::RegRequestData>("register", "RegRequestData", "register"),
        messageWithRc<zl::TokenRegisterRequestData>("tokenregister", "TokenRegisterRequestData",
                                                    "register"),
        messageWithRc<zl::AuthrenewRequestData>("authrenew", "AuthrenewRequestData", "authrenew"),
        message<zl::PlaydataRequestData>("playdata", "PlaydataRequestData", "plain"),
        message<zl::LogblobRequestData>("logblob", "LogblobRequestData", "plain"),
        messageWithRc<zl::X509ProRequestData>("x509provision", "X509ProRequestData",
                                              "x509provision"),
        messageWithRc<zl::ECCLinkProRequestData>("ecclinkprovision", "ECCLinkProRequestData",
                                                 "ecclinkprovision"),
        messageWithRc<zl::NPTicketProRequestData>("npticketprovision", "NPTicketProRequestData",
                                                  "npticketprovision"),
        message<zl::ActivateWebApiRequestData>("webapienroll", "ActivateWebApiRequestData",
                                               "plain"),
        message<zl::WebApiProxyRequestData>("webapiproxy", "WebApiProxyRequestData", "webapiproxy"),
    };
    return messages;
}

const RequestMessage& findRequestMessage(const std::string& name) {
    for (const RequestMessage& m : requestMessages()) {
        if (name == m.name)
            return m;
    }
    throw UsageError("unknown message '" + name +
                     "' (known messages: " + joinNames(requestMessages()) + ")");
}

} // namespace zuvocli
