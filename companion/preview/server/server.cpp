// All of Boost.Beast is in this file: it takes as long to compile as everything else here together.
#include "preview/server.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "preview/page_files.h"
#include "preview/request_rules.h"

namespace preview {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using asio::ip::tcp;
using boost::system::error_code;
using std::chrono::milliseconds;

constexpr std::size_t kMostRequestBytes = 8192;
constexpr std::size_t kMostMessageBytes = 4096;
constexpr std::size_t kMostWaitingMessages = 32;
// Small, so that frames of a slow page wait in the companion, where a newer one can take their place.
constexpr int kSendBufferBytes = 65536;
// After a connection that could not be taken, for want of handles perhaps.
constexpr milliseconds kRetry{100};

// A connection's place among those that the server allows; free again when the last copy goes.
using Place = std::shared_ptr<void>;
using Request = http::request<http::empty_body>;
using Payload = std::shared_ptr<const std::vector<std::uint8_t>>;

// The WebSocket of one page.
class PageSocket final : public Channel, public std::enable_shared_from_this<PageSocket> {
 public:
  PageSocket(tcp::socket socket, Place place, Hub& hub, Role role)
      : place_(std::move(place)), hub_(hub), role_(role), stream_(std::move(socket)) {}
  ~PageSocket() override { hub_.Leave(*this); }
  PageSocket(const PageSocket&) = delete;
  PageSocket& operator=(const PageSocket&) = delete;

  void Accept(const Request& request, milliseconds handshake, milliseconds silence) {
    stream_.set_option(websocket::stream_base::timeout{handshake, silence, true});
    stream_.read_message_max(kMostMessageBytes);
    stream_.async_accept(request, [self = shared_from_this()](error_code error) {
      if (error) return;
      self->hub_.Join(*self, self->role_);
      self->Read();
    });
  }

  void SendText(const std::string& text) override {
    Send({false, std::make_shared<const std::vector<std::uint8_t>>(text.begin(), text.end())});
  }
  void SendFrame(Payload bytes) override { Send({true, std::move(bytes)}); }

 private:
  struct Outgoing {
    bool binary;
    Payload bytes;
  };

  void Read() {
    stream_.async_read(buffer_, [self = shared_from_this()](error_code error, std::size_t) {
      if (error) return self->hub_.Leave(*self);
      const auto text = beast::buffers_to_string(self->buffer_.cdata());
      self->buffer_.consume(self->buffer_.size());
      if (self->hub_.Receive(*self, text)) return self->Read();
      self->CutOff(websocket::close_code::policy_error);
    });
  }

  void Send(Outgoing message) {
    if (waiting_.size() == kMostWaitingMessages) return CutOff(websocket::close_code::try_again_later);
    waiting_.push_back(std::move(message));
    if (waiting_.size() == 1) Write();
  }

  void Write() {
    stream_.binary(waiting_.front().binary);
    stream_.async_write(asio::buffer(*waiting_.front().bytes),
                        [self = shared_from_this()](error_code error, std::size_t) {
                          if (error) return self->hub_.Leave(*self);
                          self->waiting_.pop_front();
                          if (!self->waiting_.empty()) self->Write();
                        });
  }

  void CutOff(websocket::close_code why) {
    // Leaves the hub later: the hub may be walking over its pages.
    if (std::exchange(cutOff_, true)) return;
    asio::post(stream_.get_executor(), [self = shared_from_this(), why] {
      self->hub_.Leave(*self);
      self->stream_.async_close(why, [self](error_code) {});
    });
  }

  Place place_;
  Hub& hub_;
  Role role_;
  websocket::stream<beast::tcp_stream> stream_;
  beast::flat_buffer buffer_{kMostMessageBytes};
  std::deque<Outgoing> waiting_;
  bool cutOff_ = false;
};

std::optional<Role> RoleOf(std::string_view path) {
  if (path == "/headset") return Role::Headset;
  if (path == "/hands") return Role::Controllers;
  return std::nullopt;
}

std::string_view Text(beast::string_view text) { return {text.data(), text.size()}; }

// One request and its answer; a connection carries no more than one.
class Visit final : public std::enable_shared_from_this<Visit> {
 public:
  Visit(tcp::socket socket, Place place, Hub& hub, const ServerLimits& limits)
      : place_(std::move(place)), hub_(hub), limits_(limits), stream_(std::move(socket)) {}

  void Start() {
    parser_.header_limit(kMostRequestBytes);
    parser_.body_limit(0);
    stream_.expires_after(milliseconds(limits_.requestMs));
    http::async_read(stream_, buffer_, parser_, [self = shared_from_this()](error_code error, std::size_t) {
      if (!error) self->Answer();
    });
  }

 private:
  void Answer() {
    const Request& request = parser_.get();
    const std::string_view host = Text(request[http::field::host]), origin = Text(request[http::field::origin]);
    const bool oneHost = request.count(http::field::host) == 1 && request.count(http::field::origin) <= 1;
    if (!oneHost || !IsLocalHost(host))
      return Reply(http::status::misdirected_request, "This is no name of this server.");
    if (!origin.empty() && !IsSameOrigin(origin, host)) return Reply(http::status::forbidden, "Not for other sites.");
    if (websocket::is_upgrade(request)) return Upgrade(origin);
    if (request.method() != http::verb::get) return Reply(http::status::method_not_allowed, "GET only.");
    const std::string_view target = Text(request.target());
    const PageFile* file = FindPageFile(target.substr(0, target.find('?')));
    if (file == nullptr) return Reply(http::status::not_found, "There is no such page.");
    Reply(http::status::ok, file->text, file->type);
  }

  void Upgrade(std::string_view origin) {
    const auto role = RoleOf(Text(parser_.get().target()));
    if (!role) return Reply(http::status::not_found, "There is no such socket.");
    // Browsers always name it; a program that does not is no page.
    if (origin.empty()) return Reply(http::status::forbidden, "For this server's pages only.");
    if (!hub_.HasRoom(*role)) return Reply(http::status::service_unavailable, "Too many pages are open.");
    stream_.expires_never();
    std::make_shared<PageSocket>(stream_.release_socket(), std::move(place_), hub_, *role)
        ->Accept(parser_.get(), milliseconds(limits_.requestMs), milliseconds(limits_.silenceMs));
  }

  void Reply(http::status status, std::string_view text, std::string_view type = "text/plain; charset=utf-8") {
    response_.result(status);
    response_.keep_alive(false);
    response_.set(http::field::content_type, beast::string_view(type.data(), type.size()));
    response_.set(http::field::cache_control, "no-store");
    response_.set("Content-Security-Policy", "default-src 'self'; frame-ancestors 'none'; base-uri 'none'");
    response_.set("X-Content-Type-Options", "nosniff");
    response_.set("Cross-Origin-Resource-Policy", "same-origin");
    response_.set("Referrer-Policy", "no-referrer");
    response_.body() = {text.data(), text.size()};
    response_.prepare_payload();
    stream_.expires_after(milliseconds(limits_.requestMs));
    http::async_write(stream_, response_, [self = shared_from_this()](error_code, std::size_t) {
      error_code ignored;
      self->stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
    });
  }

  Place place_;
  Hub& hub_;
  const ServerLimits& limits_;
  beast::tcp_stream stream_;
  beast::flat_buffer buffer_{kMostRequestBytes};
  http::request_parser<http::empty_body> parser_;
  http::response<http::span_body<const char>> response_;
};

}  // namespace

class Server::State {
 public:
  State(std::uint16_t port, Listener& listener, const ServerLimits& chosen) : limits(chosen), hub(listener) {
    if (const auto error = Listen(v4_, {asio::ip::address_v4::loopback(), port})) {
      throw boost::system::system_error(error, "port " + std::to_string(port));
    }
    // A machine may be without IPv6: "localhost" is then 127.0.0.1 alone.
    static_cast<void>(Listen(v6_, {asio::ip::address_v6::loopback(), Port()}));
    thread_ = std::thread([this] { context.run(); });
  }
  ~State() {
    context.stop();
    thread_.join();
  }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  std::uint16_t Port() const { return v4_.acceptor.local_endpoint().port(); }

  // Runs `task` on the server's thread.
  template <typename Task>
  void Post(Task task) {
    asio::post(context, std::move(task));
  }

  const ServerLimits limits;
  Hub hub;
  asio::io_context context{1};

 private:
  struct Door {
    explicit Door(asio::io_context& context) : acceptor(context), retry(context) {}
    tcp::acceptor acceptor;
    asio::steady_timer retry;
  };

  error_code Listen(Door& door, const tcp::endpoint& endpoint) {
    error_code error;
    door.acceptor.open(endpoint.protocol(), error);
    error_code ignored;
#ifdef SO_EXCLUSIVEADDRUSE
    // Windows lets another program take over a port otherwise.
    using Exclusive = asio::detail::socket_option::boolean<SOL_SOCKET, SO_EXCLUSIVEADDRUSE>;
    door.acceptor.set_option(Exclusive(true), ignored);
#else
    // Elsewhere a port is not free, otherwise, while its last connections are remembered.
    door.acceptor.set_option(tcp::acceptor::reuse_address(true), ignored);
#endif
    if (!error) door.acceptor.bind(endpoint, error);
    if (!error) door.acceptor.listen(asio::socket_base::max_listen_connections, error);
    if (!error) Accept(door);
    return error;
  }

  void Accept(Door& door) {
    door.acceptor.async_accept([this, &door](error_code error, tcp::socket socket) {
      if (error) {
        door.retry.expires_after(kRetry);
        return door.retry.async_wait([this, &door](error_code) { Accept(door); });
      }
      if (places_.use_count() <= static_cast<long>(limits.connections)) Welcome(std::move(socket));
      Accept(door);
    });
  }

  void Welcome(tcp::socket socket) {
    error_code ignored;
    socket.set_option(tcp::no_delay(true), ignored);
    socket.set_option(asio::socket_base::send_buffer_size(kSendBufferBytes), ignored);
    std::make_shared<Visit>(std::move(socket), places_, hub, limits)->Start();
  }

  Place places_ = std::make_shared<int>();
  Door v4_{context};
  Door v6_{context};
  std::thread thread_;
};

Server::Server(std::uint16_t port, Listener& listener, const ServerLimits& limits)
    : state_(std::make_unique<State>(port, listener, limits)) {}
Server::~Server() = default;

std::uint16_t Server::Port() const { return state_->Port(); }

bool Server::WantsFrame() const { return state_->hub.WantsFrame(); }

void Server::Publish(Frame frame) {
  state_->hub.FrameComes();
  state_->Post([this, frame = std::move(frame)] { state_->hub.Publish(frame); });
}

void Server::SetDriver(bool connected) {
  state_->Post([this, connected] { state_->hub.SetDriver(connected); });
}

void Server::Pulse(std::uint32_t controllerId, std::uint32_t durationMicroseconds) {
  state_->Post([this, controllerId, durationMicroseconds] { state_->hub.Pulse(controllerId, durationMicroseconds); });
}

}  // namespace preview
