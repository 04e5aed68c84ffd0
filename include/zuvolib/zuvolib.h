// libZuvoClientLib: the whole public API in one header.
//
// Request side: fill a request record and call the matching
// `RequestBuilder::buildRequest`. Response side: construct the sub-parser
// for the expected reply over an `Expat` holder and the record to fill, and
// call `parse`. The library does no networking; the caller owns transport,
// credentials, the cipher context and the records.
#ifndef ZUVOLIB_ZUVOLIB_H
#define ZUVOLIB_ZUVOLIB_H

#include <QRXClient/Base64.h>
#include <QRXClient/lexical_cast.h>
#include <krel/KrelContext.h>

#include "zuvolib/ZuvoExceptionNoCipherContext.h"
#include "zuvolib/export.h"

#include "zuvolib/xml/TagBuilder.h"
#include "zuvolib/xml/TagNode.h"
#include "zuvolib/xml/XmlEscape.h"

#include "zuvolib/request/AuthRequestData.h"
#include "zuvolib/request/Protocol.h"
#include "zuvolib/request/ProvisioningRequestData.h"
#include "zuvolib/request/RegistrationRequestData.h"
#include "zuvolib/request/ReportingRequestData.h"
#include "zuvolib/request/RequestBuilder.h"
#include "zuvolib/request/RequestData.h"
#include "zuvolib/request/WebApiRequestData.h"

#include "zuvolib/parse/Expat.h"
#include "zuvolib/parse/ExpatHandler.h"
#include "zuvolib/parse/ParentParser.h"
#include "zuvolib/parse/ParseFailure.h"
#include "zuvolib/parse/PayloadDecryptor.h"
#include "zuvolib/parse/ResponseData.h"
#include "zuvolib/parse/SimpleParser.h"

#include "zuvolib/subparsers/AuthResponseData.h"
#include "zuvolib/subparsers/AuthSubParser.h"
#include "zuvolib/subparsers/AuthrenewSubParser.h"
#include "zuvolib/subparsers/BufferedSubParser.h"
#include "zuvolib/subparsers/CatalogueData.h"
#include "zuvolib/subparsers/ContentProfile.h"
#include "zuvolib/subparsers/PreregSubParser.h"
#include "zuvolib/subparsers/ProvisionSubParsers.h"
#include "zuvolib/subparsers/RegSubParser.h"
#include "zuvolib/subparsers/WebApiProxySubParser.h"

#endif
