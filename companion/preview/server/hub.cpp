#include "preview/hub.h"

#include <algorithm>

namespace preview {

bool Hub::HasRoom(Role role) const {
  return static_cast<std::size_t>(std::count_if(pages_.begin(), pages_.end(),
                                                [role](const Page& page) { return page.role == role; })) < kMostPages;
}

void Hub::Join(Channel& channel, Role role) {
  pages_.push_back({&channel, role});
  channel.SendText(EncodeStatus({driver_, Leads(pages_.back())}));
  Count();
}

void Hub::Leave(Channel& channel) {
  const Page* page = Find(channel);
  if (page == nullptr) return;
  const Role role = page->role;
  const bool led = Leads(*page);
  pages_.erase(pages_.begin() + (page - pages_.data()));
  if (led) SendStatus();
  const auto others =
      std::any_of(pages_.begin(), pages_.end(), [role](const Page& other) { return other.role == role; });
  if (role == Role::Controllers && !others) listener_.OnControllersGone();
  Count();
}

bool Hub::Receive(Channel& channel, std::string_view text) {
  Page* page = Find(channel);
  const auto message = ParsePageMessage(text);
  if (page == nullptr || !message) return false;
  const bool taken = Take(*page, *message);
  Count();
  return taken;
}

bool Hub::Take(Page& page, const PageMessage& message) {
  if (const auto* controller = std::get_if<ControllerMessage>(&message)) {
    if (page.role != Role::Controllers) return false;
    if (Leads(page)) listener_.OnController(*controller);
    return true;
  }
  if (page.role != Role::Headset) return false;
  if (const auto* received = std::get_if<ReceivedMessage>(&message)) {
    if (page.underWay != received->frame) return false;
    page.underWay.reset();
    return true;
  }
  if (!Leads(page)) return true;
  if (const auto* head = std::get_if<HeadMessage>(&message)) listener_.OnHead(*head);
  if (const auto* rate = std::get_if<RateMessage>(&message)) listener_.OnRate(rate->framesPerSecond);
  if (std::holds_alternative<RecenterMessage>(message)) listener_.OnRecenter();
  return true;
}

void Hub::Publish(const Frame& frame) {
  std::shared_ptr<const std::vector<std::uint8_t>> bytes;
  for (Page& page : pages_) {
    if (!page.WantsFrame()) continue;
    if (!bytes) bytes = std::make_shared<const std::vector<std::uint8_t>>(EncodeFrame(frame));
    page.underWay = frame.number;
    page.channel->SendFrame(bytes);
  }
  Count();
}

void Hub::SetDriver(bool connected) {
  driver_ = connected;
  SendStatus();
}

void Hub::Pulse(std::uint32_t controllerId, std::uint32_t durationMicroseconds) {
  const std::string text = EncodePulse(controllerId, durationMicroseconds);
  for (const Page& page : pages_) {
    if (page.role == Role::Controllers) page.channel->SendText(text);
  }
}

Hub::Page* Hub::Find(Channel& channel) {
  const auto found =
      std::find_if(pages_.begin(), pages_.end(), [&](const Page& page) { return page.channel == &channel; });
  return found == pages_.end() ? nullptr : &*found;
}

bool Hub::Leads(const Page& page) const {
  const auto leader =
      std::find_if(pages_.begin(), pages_.end(), [&](const Page& other) { return other.role == page.role; });
  return &*leader == &page;
}

void Hub::SendStatus() {
  for (const Page& page : pages_) page.channel->SendText(EncodeStatus({driver_, Leads(page)}));
}

void Hub::Count() {
  wantsFrame_ = std::any_of(pages_.begin(), pages_.end(), [](const Page& page) { return page.WantsFrame(); });
}

}  // namespace preview
