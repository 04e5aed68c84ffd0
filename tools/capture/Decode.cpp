// Decoding protocol documents and captured exchanges into JSON.
#include "capture/Decode.h"

#include "capture/RequestReader.h"
#include "capture/XmlTree.h"
#include "common/Errors.h"
#include "common/ParseResponse.h"
#include "records/ResponseTypes.h"

namespace zuvocli {
namespace {

/// The document element of `text`; RejectedError for text that is not
/// well-formed XML.
XmlElement readDocument(const std::string& text) {
    try {
        return readXml(text);
    } catch (const std::runtime_error& e) {
        throw RejectedError(e.what());
    }
}

/// The result body elements that tell a response type. The provisioning
/// types share their body element; the result's "method" tells them apart.
struct BodySign {
    const char* element;
    const char* type; ///< null: the type is the result's method, if it names one
};
const BodySign BODY_SIGNS[] = {
    {"zuvo:authorization", "authorization"},
    {"zuvo:registrationdata", "register"},
    {"zuvo:authenticationrenewal", "authrenew"},
    {"zuvo:regcode", "prereg"},
    {"zuvo:retryinterval", "prereg"},
    {"zuvo:totaltime", "prereg"},
    {"zuvo:webapiproxy", "webapiproxy"},
    {"zuvo:provisionresponsedata", nullptr},
};
const char* const PROVISION_TYPES[] = {"x509provision", "ecclinkprovision", "npticketprovision"};

/// The type `result` calls for, or empty.
std::string typeOfResult(const XmlElement& result) {
    if (result.children.empty())
        return "plain";
    for (const XmlElement& child : result.children) {
        for (const BodySign& sign : BODY_SIGNS) {
            if (child.name != sign.element)
                continue;
            if (sign.type)
                return sign.type;
            const std::string method = result.attribute("method");
            for (const char* type : PROVISION_TYPES) {
                if (method == type)
                    return type;
            }
            return std::string();
        }
    }
    return std::string();
}

} // namespace

DocumentKind documentKind(const std::string& text) {
    std::string::size_type at = 0;
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        at = 3;
    for (;;) {
        at = text.find_first_not_of(" \t\r\n", at);
        if (at == std::string::npos || text[at] != '<')
            return DocumentKind::Other;
        // Declarations, processing instructions and comments come before
        // the document element.
        if (text.compare(at, 4, "<!--") == 0) {
            const std::string::size_type end = text.find("-->", at + 4);
            if (end == std::string::npos)
                return DocumentKind::Other;
            at = end + 3;
        } else if (text.compare(at, 2, "<?") == 0 || text.compare(at, 2, "<!") == 0) {
            at = text.find('>', at);
            if (at == std::string::npos)
                return DocumentKind::Other;
            ++at;
        } else {
            break;
        }
    }
    const std::string::size_type end = text.find_first_of(" \t\r\n/>", at + 1);
    const std::string name = text.substr(at + 1, end == std::string::npos ? end : end - at - 1);
    if (name == "zuvo:request")
        return DocumentKind::Request;
    if (name == "zuvo:response")
        return DocumentKind::Response;
    return DocumentKind::Other;
}

Json decodeRequest(const std::string& text, const CipherContext& context) {
    return readRequest(readDocument(text), context);
}

std::string recognizeResponseType(const std::string& text) {
    const XmlElement root = readDocument(text);
    if (root.name != "zuvo:response")
        throw RejectedError("the document element is <" + root.name + ">, not <zuvo:response>");
    const XmlElement* result = root.find("zuvo:result");
    return result ? typeOfResult(*result) : std::string();
}

Json decodeResponse(const std::string& text, const std::string& type,
                    const CipherContext& context) {
    std::string chosen = type;
    if (chosen.empty()) {
        try {
            chosen = recognizeResponseType(text);
        } catch (const RejectedError&) {
            // Not well-formed: the common header's parser locates the fault.
            findResponseType("plain").parse(text, context);
            throw;
        }
        if (chosen.empty())
            throw RejectedError("the response's result does not tell which parser reads it; "
                                "give --type (one of: " +
                                joinNames(responseTypes()) + ")");
    }
    const ResponseType& responseType = findResponseType(chosen);
    Json decoded = {{"response", responseType.name}, {"record", responseType.record}};
    decoded["fields"] = responseType.parse(text, context);
    return decoded;
}

} // namespace zuvocli
