#include "tests/Imaging/PictureSamples.h"

#include "FennickCore/Imaging/Picture/Containers.h"

#include <algorithm>

namespace fennick::picture::test {

using namespace std::string_literals;

TiffWriter::TiffWriter(ByteOrder byteOrder, bool isBigTiff)
    : order_(byteOrder), isBig_(isBigTiff), data_(byteOrder == ByteOrder::little ? "II" : "MM") {
  data_ += isBig_ ? numberText(43, 2, order_) + numberText(8, 2, order_) + numberText(0, 2, order_)
                  : numberText(42, 2, order_);
  data_ += std::string(isBig_ ? 8 : 4, '\0');
}

TiffValue TiffWriter::shortValue(std::uint16_t tag, std::uint16_t value) const {
  return {tag, 3, 1, numberText(value, 2, order_)};
}
TiffValue TiffWriter::longValue(std::uint16_t tag, std::uint64_t value) const {
  return {tag, 4, 1, numberText(value, 4, order_)};
}
TiffValue TiffWriter::text(std::uint16_t tag, const std::string &value, std::uint16_t type) {
  return {tag, type, value.size(), value};
}

std::size_t TiffWriter::blob(const std::string &bytes) {
  data_.resize((data_.size() + 1) / 2 * 2);
  data_ += bytes;
  return data_.size() - bytes.size();
}

std::size_t TiffWriter::directory(const std::vector<TiffValue> &values, std::uint64_t next) {
  const std::size_t pointer = isBig_ ? 8 : 4;
  std::string entries = numberText(values.size(), isBig_ ? 8 : 2, order_);
  for (const auto &[tag, type, count, bytes] : values) {
    std::string place = bytes.size() <= pointer ? bytes : numberText(blob(bytes), pointer, order_);
    place.resize(pointer);
    entries +=
        numberText(tag, 2, order_) + numberText(type, 2, order_) + numberText(count, pointer, order_) + place;
  }
  return blob(entries + numberText(next, pointer, order_));
}

std::string TiffWriter::finish(std::uint64_t first) {
  writeNumber(data_, isBig_ ? 8 : 4, first, isBig_ ? 8 : 4, order_);
  return data_;
}

std::string sampleExif(const SampleExif &sample) {
  TiffWriter tiff(sample.order);
  const auto gps = tiff.directory({TiffWriter::text(1, "N\0"s), {2, 5, 3, kLatitude}});
  const auto exif = tiff.directory({TiffWriter::text(0x9003, "2024:05:01 10:00:00\0"s),
                                    TiffWriter::text(0x927C, sample.makerNote, 7),
                                    tiff.longValue(0xA002, 4000), tiff.shortValue(0xA003, 3000)});
  const auto preview = tiff.blob(kPreview);
  const auto second = tiff.directory(
      {tiff.shortValue(0x0103, 6), tiff.longValue(0x0201, preview), tiff.longValue(0x0202, kPreview.size())});
  std::vector<TiffValue> values{TiffWriter::text(0x010E, "a description\0"s)};
  if (sample.orientation)
    values.push_back(tiff.shortValue(0x0112, *sample.orientation));
  values.push_back(tiff.longValue(0x8769, exif));
  if (sample.hasGPS)
    values.push_back(tiff.longValue(0x8825, gps));
  return tiff.finish(tiff.directory(values, sample.hasPreview ? second : 0));
}

std::string sampleJpeg(const std::string &segments) {
  return "\xFF\xD8" + *jpegSegment(kAPP0, "JFIF\0\1\1\0\0\1\0\1\0\0"s) + segments + kJpegScan;
}

std::string samplePng(const std::string &chunks) {
  return "\x89PNG\r\n\x1A\n" + pngChunk("IHDR", "\0\0\0\1\0\0\0\1\x8\0\0\0\0"s) + chunks +
         pngChunk("IDAT", deflated("\0\0"s)) + pngChunk("IEND", "");
}

std::string sampleWebp() {
  const std::uint64_t bits = 299 | 199U << 14;
  const std::string chunk = webpChunk("VP8L", "\x2F" + numberText(bits, 4, ByteOrder::little) + "pixels");
  return "RIFF" + numberText(chunk.size() + 4, 4, ByteOrder::little) + "WEBP" + chunk;
}

std::string sampleTiff(bool isBigTiff, std::optional<std::uint16_t> orientation, bool isDNG) {
  TiffWriter tiff(ByteOrder::big, isBigTiff);
  const auto strip = tiff.blob("pixel data");
  std::vector<TiffValue> values{tiff.shortValue(0x0100, 10), tiff.shortValue(0x0101, 1),
                                tiff.longValue(0x0111, strip)};
  if (orientation)
    values.push_back(tiff.shortValue(0x0112, *orientation));
  values.push_back(TiffWriter::text(0x0131, "some scanner\0"s));
  if (isDNG)
    values.push_back(TiffWriter::text(0xC612, "\1\4\0\0"s, 1));
  return tiff.finish(tiff.directory(values));
}

std::string sampleRaw(const SampleRaw &sample) {
  constexpr ByteOrder kOrder = ByteOrder::big;
  constexpr std::uint64_t kWidth = 16, kHeight = 12, kScale = 8;
  TiffWriter tiff(kOrder);
  const auto picture = [&](std::uint16_t subfile, std::uint64_t scale, std::uint16_t photometric,
                           const std::string &pixel) {
    std::string pixels;
    for (std::uint64_t i = 0; i < kWidth * kHeight * scale * scale; ++i)
      pixels += pixel;
    std::string depth;
    for (std::size_t i = 0; i < pixel.size(); ++i)
      depth += numberText(8, 2, kOrder);
    const auto strip = tiff.blob(pixels);
    return std::vector<TiffValue>{tiff.longValue(0x00FE, subfile),
                                  tiff.longValue(0x0100, kWidth * scale),
                                  tiff.longValue(0x0101, kHeight * scale),
                                  {0x0102, 3, pixel.size(), depth},
                                  tiff.shortValue(0x0103, 1),
                                  tiff.shortValue(0x0106, photometric),
                                  tiff.longValue(0x0111, strip),
                                  tiff.shortValue(0x0115, static_cast<std::uint16_t>(pixel.size())),
                                  tiff.longValue(0x0117, pixels.size())};
  };
  std::vector<std::size_t> below{tiff.directory(picture(0, kScale, sample.photometric, "x"))};
  if (!sample.preview.empty()) {
    const auto preview = tiff.blob(sample.preview);
    below.push_back(
        tiff.directory({tiff.longValue(0x00FE, 1), tiff.shortValue(0x0103, 6),
                        tiff.longValue(0x0201, preview), tiff.longValue(0x0202, sample.preview.size())}));
  }
  std::string places;
  for (const std::size_t place : below)
    places += numberText(place, 4, kOrder);
  std::vector<TiffValue> first = picture(1, 1, 2, "\x28\xA0\x28");
  first.push_back(TiffWriter::text(0x010F, sample.make + '\0'));
  first.push_back(TiffWriter::text(0x0110, sample.model + '\0'));
  first.push_back(tiff.shortValue(0x0112, sample.orientation));
  first.push_back({0x014A, 4, below.size(), places});
  std::ranges::sort(first, {}, &TiffValue::tag);
  return tiff.finish(tiff.directory(first));
}

std::string box(const std::string &type, const std::string &payload) {
  return numberText(payload.size() + 8, 4) + type + payload;
}

namespace {

std::string metaBox(const SampleHeif &sample, const std::vector<std::string> &data, std::uint64_t dataAt) {
  const std::string full(4, '\0');
  std::string locations =
      full + numberText(sample.offsetBytes << 4 | 4, 1) + numberText(0, 1) + numberText(data.size(), 2);
  std::string infos;
  for (std::uint32_t item = 1; item <= data.size(); ++item) {
    locations += numberText(item, 2) + numberText(0, 2) + numberText(1, 2) +
                 numberText(dataAt, sample.offsetBytes) + numberText(data[item - 1].size(), 4);
    infos += box("infe", numberText(0x02000000, 4) + numberText(item, 2) + numberText(0, 2) +
                             (item == kExifItem ? "Exif\0"s : "hvc1\0"s));
    dataAt += data[item - 1].size();
  }
  std::string properties = box("ispe", full + numberText(400, 4) + numberText(300, 4));
  if (sample.quarters)
    properties += box("irot", numberText(*sample.quarters, 1));
  const std::string turned = sample.quarters ? "\x02\x01\x82" : "\x01\x01";
  const std::string other = sample.isSharedWithOther ? turned : "\x01\x01";
  const std::string associations = full + numberText(3, 4) + numberText(kPrimary, 2) + turned +
                                   numberText(kThumbnail, 2) + turned + numberText(kOther, 2) + other;
  const auto reference = [](const std::string &type, std::uint32_t from) {
    return box(type, numberText(from, 2) + numberText(1, 2) + numberText(kPrimary, 2));
  };
  return box("meta", full + box("pitm", full + numberText(kPrimary, 2)) +
                         box("iinf", full + numberText(data.size(), 2) + infos) + box("iloc", locations) +
                         box("iref", full + reference("thmb", kThumbnail) + reference("cdsc", kExifItem)) +
                         box("iprp", box("ipco", properties) + box("ipma", associations)));
}

} // namespace

std::string sampleHeif(const SampleHeif &sample) {
  const std::string exif = numberText(6, 4) + std::string(kExifPrefix) + sampleExif();
  const std::vector<std::string> data{"primary", "thumbnail", exif, "other"};
  const std::string type = box("ftyp", "heic\0\0\0\0mif1heic"s);
  const std::size_t metaBytes = metaBox(sample, data, 0).size();
  std::string all;
  for (const std::string &item : data)
    all += item;
  return type + metaBox(sample, data, type.size() + metaBytes + 8) + box("mdat", all);
}

std::string sampleVideo(const SampleVideo &sample) {
  const std::string handler = box("hdlr", std::string(8, '\0') + sample.handler + std::string(13, '\0'));
  const std::string track = box("trak", box("tkhd", std::string(84, '\0')) + box("mdia", handler));
  return box("ftyp", "mp42\0\0\0\0mp42"s) + box("mdat", "frames") +
         box("moov", box("mvhd", std::string(100, '\0')) + track + box("udta", sample.userData));
}

std::string sampleXmp(const std::string &attributes) {
  return R"(<?xpacket begin="" id="W5M0MpCehiHzreSzNTczkc9d"?><x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF )"
         R"(xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description rdf:about="" )"
         R"(xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmlns:exif="http://ns.adobe.com/exif/1.0/" )"
         R"(xmlns:tiff="http://ns.adobe.com/tiff/1.0/" xmlns:photoshop="http://ns.adobe.com/photoshop/1.0/" )" +
         attributes + "/></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";
}

std::string companionXmp(std::size_t gainMapBytes, std::size_t videoBytes) {
  const auto item = [](const std::string &kind, std::size_t bytes) {
    return R"(<rdf:li rdf:parseType="Resource"><Container:Item Item:Semantic=")" + kind +
           R"(" Item:Length=")" + std::to_string(bytes) + R"(" Item:Padding="0"/></rdf:li>)";
  };
  std::string packet = sampleXmp(
      R"(xmlns:hdrgm="http://ns.adobe.com/hdr-gain-map/1.0/" xmlns:Camera="http://ns.google.com/photos/1.0/camera/" )"
      R"(xmlns:Container="http://ns.google.com/photos/1.0/container/" )"
      R"(xmlns:Item="http://ns.google.com/photos/1.0/container/item/" hdrgm:Version="1.0" xmp:Rating="5" )"
      R"(Camera:MotionPhoto="1" Camera:MicroVideoOffset=")" +
      std::to_string(videoBytes) + "\"");
  const std::string end = "/></rdf:RDF>";
  return packet.replace(packet.find(end), end.size(),
                        "><Container:Directory><rdf:Seq>" + item("Primary", 0) +
                            item("GainMap", gainMapBytes) + item("MotionPhoto", videoBytes) +
                            "</rdf:Seq></Container:Directory></rdf:Description></rdf:RDF>");
}

std::string packedXmp(const std::string &packet) {
  return pngChunk("iTXt", "XML:com.adobe.xmp\0\1\0\0\0"s + deflated(packet));
}

std::string iptcSet(unsigned number, const std::string &value) {
  return "\x1C\x02" + numberText(number, 1) + numberText(value.size(), 2) + value;
}

} // namespace fennick::picture::test
