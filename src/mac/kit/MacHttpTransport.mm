#import "MacHttpTransport.hpp"

#import "../common/Text.h"
#import "HttpStream.hpp"

#import <Foundation/Foundation.h>

/// The delegate of one transfer: hands the response and every piece of the body to the
/// stream as they arrive, and cancels as soon as the stream wants no more.
@interface VantrelHttpLoad : NSObject <NSURLSessionDataDelegate>
- (instancetype)initWithStream:(std::shared_ptr<vantrel::HttpStream>)stream;
@end

@implementation VantrelHttpLoad {
    std::shared_ptr<vantrel::HttpStream> _stream;
}

- (instancetype)initWithStream:(std::shared_ptr<vantrel::HttpStream>)stream {
    if ((self = [super init])) {
        _stream = std::move(stream);
    }
    return self;
}

- (void)URLSession:(NSURLSession *)session
              dataTask:(NSURLSessionDataTask *)dataTask
    didReceiveResponse:(NSURLResponse *)response
     completionHandler:(void (^)(NSURLSessionResponseDisposition))completionHandler {
    NSInteger status = 0;
    if ([response isKindOfClass:NSHTTPURLResponse.class]) {
        status = static_cast<NSHTTPURLResponse *>(response).statusCode;
    }
    const bool wanted = _stream->response(static_cast<int>(status));
    completionHandler(wanted ? NSURLSessionResponseAllow : NSURLSessionResponseCancel);
}

- (void)URLSession:(NSURLSession *)session
          dataTask:(NSURLSessionDataTask *)dataTask
    didReceiveData:(NSData *)data {
    __block bool more = true;
    vantrel::HttpStream &stream = *_stream;
    [data enumerateByteRangesUsingBlock:^(const void *bytes, NSRange range, BOOL *stop) {
        more = stream.body(std::string_view(static_cast<const char *>(bytes), range.length));
        if (!more) {
            *stop = YES;
        }
    }];
    if (!more) {
        [dataTask cancel];
    }
}

- (void)URLSession:(NSURLSession *)session
                    task:(NSURLSessionTask *)task
    didCompleteWithError:(NSError *)error {
    if (error) {
        _stream->complete(scrimlet::mac::toString(error.localizedDescription));
    } else {
        _stream->complete(std::nullopt);
    }
}

@end

namespace scrimlet::mac {

namespace {

class MacHttpTransport final : public vantrel::HttpTransport {
  public:
    void send(const Request &request, const Receiver &receiver) override {
        NSURL *url = [NSURL URLWithString:toNSString(request.url)];
        if (!url) {
            NSError *bad = [NSError errorWithDomain:NSURLErrorDomain
                                               code:NSURLErrorBadURL
                                           userInfo:nil];
            throw vantrel::HttpError(toString(bad.localizedDescription));
        }
        NSMutableURLRequest *load = [NSMutableURLRequest requestWithURL:url];
        if (request.ignoreLocalCache) {
            load.cachePolicy = NSURLRequestReloadIgnoringLocalCacheData;
        }
        if (request.timeoutSeconds > 0) {
            load.timeoutInterval = request.timeoutSeconds;
        }
        for (const auto &[field, value] : request.headers) {
            [load setValue:toNSString(value) forHTTPHeaderField:toNSString(field)];
        }

        auto stream = std::make_shared<vantrel::HttpStream>(receiver);
        NSURLSessionConfiguration *configuration =
            NSURLSessionConfiguration.defaultSessionConfiguration;
        // An archive of many megabytes has no place in a cache, and the feed must be fresh.
        configuration.URLCache = nil;
        // One callback at a time, in order, away from the main thread.
        NSOperationQueue *callbacks = [[NSOperationQueue alloc] init];
        callbacks.maxConcurrentOperationCount = 1;
        callbacks.qualityOfService = NSQualityOfServiceUtility;
        VantrelHttpLoad *delegate = [[VantrelHttpLoad alloc] initWithStream:stream];
        NSURLSession *session = [NSURLSession sessionWithConfiguration:configuration
                                                              delegate:delegate
                                                         delegateQueue:callbacks];
        [[session dataTaskWithRequest:load] resume];
        // The session keeps its delegate, and so the stream, until the transfer has ended,
        // then lets both go.
        [session finishTasksAndInvalidate];
        stream->wait();
    }
};

} // namespace

std::shared_ptr<vantrel::HttpTransport> makeHttpTransport() {
    return std::make_shared<MacHttpTransport>();
}

} // namespace scrimlet::mac
