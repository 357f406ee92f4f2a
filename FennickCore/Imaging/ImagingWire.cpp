#include "FennickCore/Imaging/ImagingWire.h"

#include "FennickCore/Support/Text.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <type_traits>

namespace fennick::wire {

namespace {

using Json = nlohmann::json;

// Long messages of libraries are shortened so that every message fits; quotes and similar characters take two
// bytes.
constexpr std::size_t kMostDetailBytes = 1024;

std::string dump(const Json &message) { return message.dump(-1, ' ', false, Json::error_handler_t::replace); }

std::string cut(const std::string &detail) { return withoutControls(detail.substr(0, kMostDetailBytes)); }

template <typename T>
void put(Json &object, const char *key, const std::optional<T> &value) {
  if (value)
    object[key] = *value;
}

// Returns an integer of at least `lowest`.
std::int64_t number(const Json &value, std::int64_t lowest = std::numeric_limits<std::int64_t>::min()) {
  const auto result = value.is_number_integer() ? value.get<std::int64_t>() : lowest;
  if (!value.is_number_integer() || result < lowest)
    throw Json::out_of_range::create(401, "no such number", nullptr);
  return result;
}

// Returns a number from 0 to 1.
double share(const Json &value) {
  const auto result = value.get<double>();
  if (std::isnan(result) || result < 0 || result > 1)
    throw Json::out_of_range::create(401, "no such share", nullptr);
  return result;
}

std::optional<std::int64_t> optionalNumber(const Json &object, const char *key) {
  const auto found = object.find(key);
  return found == object.end() ? std::nullopt : std::optional(number(*found));
}

std::optional<Seconds> optionalSeconds(const Json &object, const char *key) {
  const auto found = object.find(key);
  return found == object.end() ? std::nullopt : std::optional(Seconds(found->get<double>()));
}

template <typename Enumeration>
Enumeration enumerated(const Json &value, Enumeration last) {
  const auto raw = number(value);
  if (raw < 0 || raw > static_cast<std::int64_t>(last))
    throw Json::out_of_range::create(401, "no such value", nullptr);
  return static_cast<Enumeration>(raw);
}

Json json(const FactsRequest &request) { return {{"task", "facts"}, {"headerOnly", request.headerOnly}}; }
Json json(const DetailsRequest &) { return {{"task", "details"}}; }

Json json(const ThumbnailRequest &request) {
  return {{"task", "thumbnail"}, {"maxPixel", request.maxPixel}, {"quality", request.quality}};
}

Json json(const RenderRequest &request) {
  Json object{{"task", "render"},
              {"output", request.output},
              {"longEdge", request.longEdge},
              {"quality", request.quality},
              {"qualityFloor", request.qualityFloor},
              {"stripLocation", request.stripLocation},
              {"stripAllMetadata", request.stripAllMetadata}};
  put(object, "maxBytes", request.maxBytes);
  if (request.searchTime)
    object["searchTime"] = request.searchTime->count();
  return object;
}

Json json(const OrientationRequest &request) {
  return {{"task", "orientation"}, {"orientation", request.orientation}};
}

RenderRequest renderRequest(const Json &object) {
  return {.output = enumerated(object.at("output"), kLastPictureType),
          .longEdge = number(object.at("longEdge")),
          .maxBytes = optionalNumber(object, "maxBytes"),
          .quality = share(object.at("quality")),
          .qualityFloor = share(object.at("qualityFloor")),
          .stripLocation = object.at("stripLocation").get<bool>(),
          .stripAllMetadata = object.at("stripAllMetadata").get<bool>(),
          .searchTime = optionalSeconds(object, "searchTime")};
}

Request request(const Json &object) {
  const auto task = object.at("task").get<std::string>();
  if (task == "facts")
    return FactsRequest{.headerOnly = object.at("headerOnly").get<bool>()};
  if (task == "details")
    return DetailsRequest{};
  if (task == "thumbnail")
    return ThumbnailRequest{.maxPixel = number(object.at("maxPixel")),
                            .quality = share(object.at("quality"))};
  if (task == "render")
    return renderRequest(object);
  if (task == "orientation")
    return OrientationRequest{.orientation = number(object.at("orientation"))};
  throw Json::out_of_range::create(401, "no such task", nullptr);
}

Json json(const PictureFacts &facts) {
  Json object{{"type", facts.type},
              {"frames", facts.frames},
              {"hasLocation", facts.hasLocation},
              {"hasMetadata", facts.hasMetadata},
              {"fidelity", facts.fidelity}};
  put(object, "width", facts.width);
  put(object, "height", facts.height);
  put(object, "orientation", facts.orientation);
  return object;
}

PictureFacts facts(const Json &object) {
  return {.type = enumerated(object.at("type"), kLastPictureType),
          .frames = number(object.at("frames"), 0),
          .width = optionalNumber(object, "width"),
          .height = optionalNumber(object, "height"),
          .orientation = optionalNumber(object, "orientation"),
          .hasLocation = object.at("hasLocation").get<bool>(),
          .hasMetadata = object.at("hasMetadata").get<bool>(),
          .fidelity = enumerated(object.at("fidelity"), kLastFidelity)};
}

Json json(const PictureDetails &details) {
  Json object = Json::object();
  const auto put = [&](const char *key, const std::string &text) {
    if (!text.empty())
      object[key] = oneLine(text, kMostDetailText);
  };
  put("camera", details.camera);
  put("lens", details.lens);
  put("taken", details.taken);
  put("offset", details.offset);
  put("exposure", details.exposure);
  return object;
}

PictureDetails details(const Json &object) {
  const auto text = [&](const char *key) { return oneLine(object.value(key, ""), kMostDetailText); };
  return {.camera = text("camera"),
          .lens = text("lens"),
          .taken = text("taken"),
          .offset = text("offset"),
          .exposure = text("exposure")};
}

Answer answer(const Json &object) {
  Answer result;
  if (const auto fault = object.find("fault"); fault != object.end()) {
    result.error = PictureError{.fault = enumerated(*fault, PictureFault::unsupported),
                                .detail = cut(object.at("detail").get<std::string>())};
    return result;
  }
  result.facts = facts(object.at("facts"));
  if (const auto found = object.find("details"); found != object.end())
    result.details = details(*found);
  result.longEdge = number(object.at("longEdge"), 0);
  result.quality = share(object.at("quality"));
  result.withinMaxBytes = object.at("withinMaxBytes").get<bool>();
  result.losesVideo = object.at("losesVideo").get<bool>();
  result.losesGainMap = object.at("losesGainMap").get<bool>();
  return result;
}

Hello hello(const Json &object) {
  return {.lockedDown = object.at("lockedDown").get<bool>(),
          .encodesHEIC = object.at("encodesHEIC").get<bool>(),
          .detail = cut(object.at("detail").get<std::string>())};
}

// The only place that catches the JSON library's exceptions.
template <typename Read>
auto understood(std::string_view message, Read read) -> std::optional<std::invoke_result_t<Read, Json>> {
  try {
    return read(Json::parse(message));
  } catch (const Json::exception &) {
    return std::nullopt;
  }
}

} // namespace

std::string encoded(const Request &request) {
  return dump(std::visit([](const auto &alternative) { return json(alternative); }, request));
}

std::string encoded(const Hello &hello) {
  return dump(
      {{"lockedDown", hello.lockedDown}, {"encodesHEIC", hello.encodesHEIC}, {"detail", cut(hello.detail)}});
}

std::string encoded(const Answer &answer) {
  if (answer.error)
    return dump({{"fault", answer.error->fault}, {"detail", cut(answer.error->detail)}});
  Json object{{"facts", json(answer.facts)},     {"longEdge", answer.longEdge},
              {"quality", answer.quality},       {"withinMaxBytes", answer.withinMaxBytes},
              {"losesVideo", answer.losesVideo}, {"losesGainMap", answer.losesGainMap}};
  if (answer.details != PictureDetails())
    object["details"] = json(answer.details);
  return dump(object);
}

std::optional<Request> decodedRequest(std::string_view message) { return understood(message, request); }
std::optional<Hello> decodedHello(std::string_view message) { return understood(message, hello); }
std::optional<Answer> decodedAnswer(std::string_view message) { return understood(message, answer); }

} // namespace fennick::wire
