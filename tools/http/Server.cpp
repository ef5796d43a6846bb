#include "tools/http/Server.h"

#include <microhttpd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <list>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "text/Number.h"
#include "tools/http/Connections.h"

namespace quordalvane::http {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t eventBytes = std::size_t{4} << 20U;
constexpr std::size_t pieceSize = std::size_t{8} << 10U;

// This leaves room for connections that are being cut off. The system queues further clients.
constexpr unsigned mostOpen = 2 * Server::mostConnections;

// How often the server looks for slow clients, and how often it sends each reader a comment line,
// which shows that the server still runs.
constexpr Server::Time reviewPause = 1s;
constexpr Server::Time heartbeat = 10s;

constexpr std::pair<const char*, const char*> everyHeader[] = {
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data: blob:; "
     "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cache-Control", "no-store"},
};

struct ResponseDeleter {
  void operator()(MHD_Response* response) const { MHD_destroy_response(response); }
};
using Response = std::unique_ptr<MHD_Response, ResponseDeleter>;

std::string headerOf(MHD_Connection* connection, const char* name) {
  const char* const value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
  return value == nullptr ? "" : value;
}

MHD_Result keepArgument(void* query, MHD_ValueKind, const char* name, const char* value) {
  auto& arguments = *static_cast<std::map<std::string, std::string>*>(query);
  arguments[name] = value == nullptr ? "" : value;
  return MHD_YES;
}

void addHeaders(MHD_Response* response, const Answer& answer) {
  for (const auto& [name, value] : everyHeader) {
    MHD_add_response_header(response, name, value);
  }
  MHD_add_response_header(response, "Content-Type", answer.type.c_str());
  if (answer.status == MHD_HTTP_SERVICE_UNAVAILABLE) {
    MHD_add_response_header(response, "Retry-After", "5");
  }
  if (answer.status == MHD_HTTP_METHOD_NOT_ALLOWED) {
    MHD_add_response_header(response, "Allow", "GET, HEAD, POST");
  }
}

ssize_t readText(void* body, std::uint64_t position, char* out, std::size_t room) {
  const Text& text = *static_cast<Text*>(body);
  const std::size_t count = std::min<std::size_t>(room, text->size() - position);
  std::copy_n(text->data() + position, count, out);
  return static_cast<ssize_t>(count);
}

// All readers share the text. It is not copied, however many readers there are and however slow
// they are.
Response responseOf(const Text& text) {
  return Response(
      MHD_create_response_from_callback(text->size(), pieceSize, readText, new Text(text),
                                        [](void* body) { delete static_cast<Text*>(body); }));
}

}  // namespace

Answer answerWith(std::string text, std::string type) {
  return {.type = std::move(type), .body = std::make_shared<const std::string>(std::move(text))};
}

// The reasons are this server's own texts and contain nothing that JSON must escape.
Answer refusal(unsigned status, const std::string& why) {
  Answer answer = answerWith(R"({"ok":false,"error":")" + why + "\"}");
  answer.status = status;
  return answer;
}

/// The part of the server that uses the web library: the library's callbacks and connections.
class Server::Machine {
 public:
  Machine(int listening, Endpoint endpoint, Handler handler)
      : token_(randomToken()),
        endpoint_(std::move(endpoint)),
        gate_(endpoint_, token_),
        handler_(std::move(handler)) {
    const int own = ::dup(listening);
    if (own < 0) {
      throw std::system_error(errno, std::generic_category());
    }
    daemon_ = MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr, onRequest, this,
        MHD_OPTION_LISTEN_SOCKET, own, MHD_OPTION_CONNECTION_LIMIT, mostOpen,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT, longestHead + pieceSize, MHD_OPTION_CONNECTION_TIMEOUT,
        static_cast<unsigned>(longestWait.count()), MHD_OPTION_NOTIFY_CONNECTION, onConnection,
        this, MHD_OPTION_NOTIFY_COMPLETED, onCompleted, this, MHD_OPTION_END);
    if (daemon_ == nullptr) {
      ::close(own);
      throw std::runtime_error("the web server cannot be started");
    }
  }

  // The web library must not be stopped while a connection is suspended. Therefore this function
  // wakes all readers first.
  ~Machine() {
    ends_ = true;
    wakeReaders();
    MHD_run(daemon_);
    MHD_stop_daemon(daemon_);
  }

  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  std::string address() const { return "http://" + endpoint_.text() + "/" + token_ + "/"; }
  EventLog& events() { return events_; }
  std::size_t readers() const { return readers_.size(); }

  int descriptor() const {
    return MHD_get_daemon_info(daemon_, MHD_DAEMON_INFO_EPOLL_FD)->epoll_fd;
  }

  std::optional<Time> nextEvent(Time now) const {
    std::optional<Time> next;
    if (MHD_UNSIGNED_LONG_LONG milliseconds = 0;
        MHD_get_timeout(daemon_, &milliseconds) == MHD_YES) {
      next = now + std::chrono::milliseconds(milliseconds);
    }
    if (!connections_.isEmpty()) {
      next = std::min(next.value_or(reviewedAt_ + reviewPause), reviewedAt_ + reviewPause);
    }
    return next;
  }

  void work(Time now) {
    now_ = now;
    if (now - reviewedAt_ >= reviewPause) {
      reviewedAt_ = now;
      connections_.cutOffTheSlow(now);
      cutOffLostReaders();
      keepReadersAlive();
    }
    wakeReaders();
    MHD_run(daemon_);
  }

 private:
  struct Reader {
    Machine& machine;
    MHD_Connection* connection;
    EventReader events;
    bool isSuspended = false;
  };

  static Connection* connectionOf(MHD_Connection* connection) {
    const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
    return static_cast<Connection*>(info->socket_context);
  }

  static bool isCutOff(const Reader& reader) { return connectionOf(reader.connection)->isCutOff; }

  static void onConnection(void* machine, MHD_Connection* connection, void** context,
                           MHD_ConnectionNotificationCode code) {
    auto& self = *static_cast<Machine*>(machine);
    if (code == MHD_CONNECTION_NOTIFY_STARTED) {
      const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
      *context = &self.connections_.add(info->connect_fd, self.now_);
    } else if (*context != nullptr) {
      self.connections_.remove(*static_cast<Connection*>(*context));
      *context = nullptr;
    }
  }

  static void onCompleted(void* machine, MHD_Connection* connection, void** context,
                          MHD_RequestTerminationCode /*code*/) {
    auto& self = *static_cast<Machine*>(machine);
    delete static_cast<std::string*>(std::exchange(*context, nullptr));
    if (Connection* const its = connectionOf(connection)) {
      Connections::enter(*its, Connection::Phase::Asking, self.now_);
    }
  }

  // The library calls this function once with the head of a request, then with each piece of the
  // body, and once at the end.
  static MHD_Result onRequest(void* machine, MHD_Connection* connection, const char* path,
                              const char* method, const char* /*version*/, const char* data,
                              std::size_t* size, void** context) {
    auto& self = *static_cast<Machine*>(machine);
    if (self.ends_) {
      return MHD_NO;
    }
    if (*context == nullptr) {
      *context = new std::string();
      const auto refused = self.refuses(connection, path, method);
      return refused ? self.send(connection, refusal(refused->status, refused->why)) : MHD_YES;
    }
    auto& body = *static_cast<std::string*>(*context);
    if (*size > 0) {
      const bool hasRoom = body.size() + *size <= longestBody;
      body.append(data, hasRoom ? *size : 0);
      *size = 0;
      return hasRoom ? MHD_YES : MHD_NO;
    }
    return self.send(connection, self.answerTo(connection, path, method, std::move(body)));
  }

  std::optional<Refusal> refuses(MHD_Connection* connection, const char* path,
                                 const char* method) const {
    const std::string host = headerOf(connection, "Host");
    const std::string origin = headerOf(connection, "Origin");
    const std::string type = headerOf(connection, "Content-Type");
    auto refused = gate_.refuses(
        {.method = method, .path = path, .host = host, .origin = origin, .contentType = type});
    const auto length = numberIn<std::uint64_t>(headerOf(connection, "Content-Length"));
    if (!refused && length.value_or(0) > longestBody) {
      return Refusal{413, "the request is too long; at most 65536 bytes are allowed"};
    }
    return refused;
  }

  Answer answerTo(MHD_Connection* connection, const char* path, const std::string& method,
                  std::string body) const {
    Request request{.method = method == "HEAD" ? "GET" : method,
                    .path = std::string(gate_.below(path)),
                    .query = {},
                    .body = std::move(body),
                    .lastEvent = numberIn<std::uint64_t>(headerOf(connection, "Last-Event-ID"))};
    MHD_get_connection_values(connection, MHD_GET_ARGUMENT_KIND, keepArgument, &request.query);
    try {
      return handler_(request);
    } catch (const std::exception&) {  // an exception must not reach the library
      return refusal(500, "the server could not answer");
    }
  }

  MHD_Result send(MHD_Connection* connection, const Answer& answer) {
    if (answer.events && !hasRoomForReader()) {
      return send(connection,
                  refusal(503, "too many pages are open; close one, or try again later"));
    }
    const Response response =
        answer.events ? beginReading(connection, *answer.events) : responseOf(answer.body);
    if (response == nullptr) {
      return MHD_NO;
    }
    addHeaders(response.get(), answer);
    Connections::enter(*connectionOf(connection),
                       answer.events ? Connection::Phase::Reading : Connection::Phase::Answered,
                       now_);
    return MHD_queue_response(connection, answer.status, response.get());
  }

  Response beginReading(MHD_Connection* connection, const Answer::Events& events) {
    readers_.push_back({*this, connection, EventReader(events_, events.first, events.after)});
    return Response(MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, pieceSize, readEvents,
                                                      &readers_.back(), endReading));
  }

  static ssize_t readEvents(void* context, std::uint64_t, char* out, std::size_t room) {
    auto& reader = *static_cast<Reader*>(context);
    if (reader.machine.ends_) {
      return MHD_CONTENT_READER_END_OF_STREAM;
    }
    if (reader.events.isLost() || isCutOff(reader)) {
      return MHD_CONTENT_READER_END_WITH_ERROR;
    }
    const std::size_t count = reader.events.read(out, room);
    if (count == 0) {
      MHD_suspend_connection(reader.connection);
      reader.isSuspended = true;
    }
    return static_cast<ssize_t>(count);
  }

  static void endReading(void* context) {
    const auto* reader = static_cast<Reader*>(context);
    reader->machine.readers_.remove_if([&](const Reader& one) { return &one == reader; });
  }

  void wakeReaders() {
    for (Reader& reader : readers_) {
      if (reader.isSuspended && (ends_ || reader.events.hasMore() || isCutOff(reader))) {
        reader.isSuspended = false;
        MHD_resume_connection(reader.connection);
      }
    }
  }

  // Cuts off the readers that were too slow or have left. `readEvents` alone would not notice such
  // a reader, because the library does not call `readEvents` while the reader takes no bytes.
  void cutOffLostReaders() {
    for (const Reader& reader : readers_) {
      Connection& its = *connectionOf(reader.connection);
      if (!its.isCutOff && (reader.events.isLost() || Connections::hasLeft(its))) {
        Connections::cutOff(its);
      }
    }
  }

  // Returns true if there is room for another reader. Readers that have left are removed first.
  bool hasRoomForReader() {
    cutOffLostReaders();
    const auto left = std::count_if(readers_.begin(), readers_.end(), isCutOff);
    return readers_.size() - static_cast<std::size_t>(left) < mostReaders;
  }

  // Only a write shows that a client has vanished without closing its connection.
  void keepReadersAlive() {
    if (now_ - beatenAt_ < heartbeat) {
      return;
    }
    beatenAt_ = now_;
    for (Reader& reader : readers_) {
      reader.events.keepAlive();
    }
  }

  const std::string token_;
  const Endpoint endpoint_;
  const Gate gate_;
  const Handler handler_;
  EventLog events_{eventBytes};
  Connections connections_;
  std::list<Reader> readers_;
  MHD_Daemon* daemon_ = nullptr;
  Time now_{};
  Time reviewedAt_{};
  Time beatenAt_{};
  bool ends_ = false;
};

Server::Server(int listening, Endpoint endpoint, Handler handler)
    : machine_(std::make_unique<Machine>(listening, std::move(endpoint), std::move(handler))) {}

Server::~Server() = default;

std::string Server::address() const {
  return machine_->address();
}

const EventLog& Server::events() const {
  return machine_->events();
}

void Server::publish(std::string_view name, std::string_view data) {
  machine_->events().add(name, data);
}

std::size_t Server::readers() const {
  return machine_->readers();
}

void Server::await(std::vector<pollfd>& awaited) const {
  awaited.push_back({.fd = machine_->descriptor(), .events = POLLIN, .revents = 0});
}

std::optional<Server::Time> Server::nextEvent(Time now) const {
  return machine_->nextEvent(now);
}

void Server::work(Time now) {
  machine_->work(now);
}

}  // namespace quordalvane::http
