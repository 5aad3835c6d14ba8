#include "console/dicom/DecoderComplaints.h"

#include "console/dicom/DicomFile.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/oflog/appender.h>
#include <dcmtk/oflog/oflog.h>
#include <dcmtk/oflog/spi/logevent.h>

#include <stdexcept>

namespace Console {
namespace {

namespace log = dcmtk::log4cplus;

/// Receives the complaints of this thread; null if they are ignored.
thread_local std::string* complaintsOfThread = nullptr;

class Collector : public log::Appender {
public:
    ~Collector() override { destructorImpl(); }
    void close() override {}

protected:
    void append(const log::spi::InternalLoggingEvent& event) override {
        if (!complaintsOfThread || !complaintsOfThread->empty()) return;
        *complaintsOfThread = std::string(event.getMessage().c_str());
    }
};

void CollectFromDecoders() {
    static const bool once = [] {
        SilenceToolkit();
        const log::SharedAppenderPtr collector(new Collector());
        for (const char* decoder : {"dcmtk.dcmjpeg", "dcmtk.dcmjpls"}) {
            OFLogger logger = OFLog::getLogger(decoder);
            logger.setLogLevel(OFLogger::WARN_LOG_LEVEL);
            logger.setAdditivity(false);
            logger.addAppender(collector);
        }
        return true;
    }();
    static_cast<void>(once);
}

}  // namespace

DecoderComplaints::DecoderComplaints() {
    CollectFromDecoders();
    complaintsOfThread = &first_;
}

DecoderComplaints::~DecoderComplaints() { complaintsOfThread = nullptr; }

void DecoderComplaints::Check() const {
    if (!first_.empty()) throw std::runtime_error("its pixels are damaged: " + first_);
}

}  // namespace Console
