// The strict multipart/form-data reader: what browsers send is read exactly, anything else is
// refused with a sentence.
#include "engine/multipart_form.h"

#include <gtest/gtest.h>

namespace ostrakan::engine {
namespace {

TEST(MultipartForm, ReadsTheFieldsAndFilesABrowserSends) {
  EXPECT_EQ(MultipartBoundary("multipart/form-data; boundary=----WebKitFormBoundaryA1b2"),
            "----WebKitFormBoundaryA1b2");
  EXPECT_EQ(MultipartBoundary("Multipart/Form-Data;boundary=\"a b:c\""), "a b:c");
  // A file whose bytes hold CRLFs, a near-boundary and NUL; a text field in GBK; a file field
  // left empty; an escaped quote in a file name.
  const std::string file("{\r\n--Xy\r\n-XyZ\0}", 15);
  const std::string body =
      "--XyZ\r\nContent-Disposition: form-data; name=\"kind\"\r\n\r\n\xB5\xE7\xD3\xB0\r\n"
      "--XyZ\r\ncontent-disposition: form-data; name=\"file\"; filename=\"a\\\"b.json\"\r\n"
      "Content-Type: application/json\r\n\r\n" +
      file +
      "\r\n--XyZ\r\nContent-Disposition: form-data; name=\"other\"; filename=\"\"\r\n"
      "Content-Type: application/octet-stream\r\n\r\n\r\n--XyZ--\r\n";
  const auto parts = ReadMultipart(body, "XyZ");
  std::string read;
  for (const auto& part : parts)
    read += part.name + "|" + part.fileName.value_or("(none)") + "|" + part.contentType + "|" +
            part.data + "\n";
  EXPECT_EQ(read, "kind|(none)||\xB5\xE7\xD3\xB0\nfile|a\"b.json|application/json|" + file +
                      "\nother||application/octet-stream|\n");
  EXPECT_TRUE(ReadMultipart("--XyZ--", "XyZ").empty());
}

TEST(MultipartForm, RefusesEverythingElseAndWhatIsTooLarge) {
  for (const char* type :
       {"multipart/form-data", "multipart/form-data; boundary=", "multipart/mixed; boundary=a",
        "multipart/form-data; boundary=\"a", "multipart/form-data; boundary=a; boundary=b",
        "multipart/form-data; boundary=a{b}"})
    EXPECT_THROW(MultipartBoundary(type), MultipartError) << type;
  EXPECT_THROW(MultipartBoundary("multipart/form-data; boundary=" + std::string(71, 'a')),
               MultipartError);

  const std::string head = "Content-Disposition: form-data; name=\"f\"\r\n\r\n";
  for (const std::string& body : std::vector<std::string>{
           "preamble\r\n--B\r\n" + head + "x\r\n--B--",          // text before the first boundary
           "--B\n" + head + "x\r\n--B--",                        // a bare LF
           "--B\r\n" + head + "x\r\n--B",                        // no closing boundary
           "--B\r\n" + head + "x",                               // cut short
           "--B\r\n" + head + "x\r\n--B--\r\nmore",              // data after the end
           "--B\r\nContent-Type: text/plain\r\n\r\nx\r\n--B--",  // no disposition
           "--B\r\nContent-Disposition: form-data\r\n\r\nx\r\n--B--",               // no name
           "--B\r\nContent-Disposition: attachment; name=\"f\"\r\n\r\nx\r\n--B--",  // not a form
           "--B\r\n" + head.substr(0, head.size() - 2) + " folded\r\n\r\nx\r\n--B--",
           "--B\r\n\r\nContent-Disposition: form-data; name=\"f\"\r\n\r\nx\r\n--B--",
           "--B\r\nContent-Transfer-Encoding: base64\r\n" + head + "eA==\r\n--B--",
           "--B\r\nX: " + std::string(5000, 'a') + "\r\n" + head + "x\r\n--B--"})
    EXPECT_THROW(ReadMultipart(body, "B"), MultipartError) << body.substr(0, 80);

  MultipartLimits small;
  small.maxParts = 2;
  small.maxFileBytes = 10;
  const std::string field = "--B\r\n" + head + "x\r\n";
  EXPECT_EQ(ReadMultipart(field + field + "--B--", "B", small).size(), 2u);
  EXPECT_THROW(ReadMultipart(field + field + field + "--B--", "B", small), MultipartError);
  const std::string file =
      "--B\r\nContent-Disposition: form-data; name=\"f\"; filename=\"a\"\r\n\r\n";
  EXPECT_EQ(ReadMultipart(file + std::string(10, 'a') + "\r\n--B--", "B", small).size(), 1u);
  // Two files over the limit together.
  EXPECT_THROW(
      ReadMultipart(file + std::string(6, 'a') + "\r\n" + file + "aaaaa\r\n--B--", "B", small),
      MultipartError);
}

}  // namespace
}  // namespace ostrakan::engine
