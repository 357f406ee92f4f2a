#include "Quarrow/Actions/FileJobs.h"

#include <algorithm>

namespace quarrow {

FileJobs::~FileJobs() {
  for (const auto &ticket : tickets_)
    ticket->stopped_ = true;
}

int FileJobs::done() const {
  int steps = finished_;
  for (const auto &ticket : tickets_)
    steps += ticket->done_;
  return steps;
}

int FileJobs::total() const {
  int steps = finished_;
  for (const auto &ticket : tickets_)
    steps += ticket->total_;
  return steps;
}

bool FileJobs::stopping() const {
  return std::ranges::any_of(tickets_, [](const auto &ticket) { return ticket->stopped_.load(); });
}

void FileJobs::stop() {
  for (const auto &ticket : tickets_)
    ticket->stopped_ = true;
  emit changed();
}

std::shared_ptr<FileJobs::Ticket> FileJobs::begin(int steps) {
  auto ticket = std::make_shared<Ticket>();
  ticket->total_ = steps;
  ticket->announce_ = [this, weak = std::weak_ptr(ticket), token = lifetime_.token()] {
    mainQueue_.post(token.guard([this, weak] {
      const auto announced = weak.lock();
      if (!announced)
        return;
      announced->announced_ = false;
      emit changed();
    }));
  };
  tickets_.push_back(ticket);
  emit changed();
  return ticket;
}

void FileJobs::post(std::shared_ptr<Ticket> ticket, std::function<std::function<void()>()> work) {
  if (!queue_)
    queue_ = std::make_unique<fennick::SerialQueue>("fennick.actions");
  queue_->post([this, ticket = std::move(ticket), token = lifetime_.token(), work = std::move(work)] {
    mainQueue_.post(token.guard([this, ticket, finish = work()] {
      if (ticket)
        end(ticket);
      finish();
    }));
  });
}

void FileJobs::end(const std::shared_ptr<Ticket> &ticket) {
  finished_ += ticket->total_;
  std::erase(tickets_, ticket);
  if (tickets_.empty())
    finished_ = 0;
  emit changed();
}

} // namespace quarrow
