// zuvo serve: the scripted server of the demo on the network, for a device
// application to run its session against over its own transport.
#include "zuvo/Commands.h"

#include "capture/Har.h"
#include "common/Errors.h"
#include "common/Io.h"
#include "common/Keys.h"
#include "records/ResponseTypes.h"
#include "server/Scenario.h"
#include "server/ServeLog.h"
#include "server/ServeSession.h"

#ifdef ZUVO_WITH_SERVE
#include "http/HttpFront.h"
#endif

#include <chrono>
#include <fstream>
#include <iostream>
#include <memory>

namespace zuvocli {

int runServe(const ServeOptions& options) {
#ifndef ZUVO_WITH_SERVE
    (void)options;
    throw UsageError("this zuvo was built without the server (ZUVO_BUILD_SERVE was off or "
                     "libmicrohttpd was missing when it was configured)");
#else
    const ListenAddress address = parseListenAddress(options.listen);
    const CipherContext context = makeCipherContext(options.key.hex, options.key.file);
    Scenario scenario;
    if (!options.scenario.empty())
        scenario = Scenario::parse(readInput(options.scenario), options.scenario);

    if (!options.log.empty() && options.log == options.har)
        throw UsageError("--log and --har name the same file '" + options.log + "'");
    // Both files are opened now, so that a bad name fails at the start and
    // not after a session.
    std::ofstream logFile;
    if (!options.log.empty()) {
        logFile.open(options.log, std::ios::out | std::ios::trunc);
        if (!logFile)
            throw UsageError("cannot write the log file '" + options.log + "'");
    }
    std::ofstream harFile;
    std::unique_ptr<HarWriter> har;
    if (!options.har.empty()) {
        harFile.open(options.har, std::ios::out | std::ios::trunc);
        if (!harFile)
            throw UsageError("cannot write the HAR file '" + options.har + "'");
        // Entries are appended as exchanges end: a killed server leaves a
        // file that lacks only its closing brackets.
        har = std::make_unique<HarWriter>(harFile);
    }

    ServeSession session(context, std::move(scenario),
                         std::chrono::milliseconds(1000ull * options.idleSeconds));
    ServeLog log(options.log.empty() ? std::cerr : logFile, har.get(), context);
    serveHttp(address, options.path, options.maxBody, session, log);
    if (log.failed())
        return EXIT_REJECTED;
    if (har)
        har->finish();
    std::cerr << "zuvo serve: stopped after " << log.count() << " exchanges" << std::endl;
    return EXIT_OK;
#endif
}

} // namespace zuvocli
