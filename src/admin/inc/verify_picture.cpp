#include "admin/inc/verify_picture.h"

#include "access/verify_code.h"
#include "platform/text/stream.h"

namespace ostrakan::admin {

namespace {
Bytes LoadFile(const std::u16string& path) {
  auto stream = CurrentServer().CreateObject(u"Adodb.Stream").As<Stream>();
  if (!stream) throw ObjectRequired();
  stream->Type = 1;
  stream->Mode = 3;
  stream->Open();
  stream->LoadFromFile(path);
  Bytes bytes = stream->Read();
  stream->Close();
  return bytes;
}
}  // namespace

VerifyPicture::VerifyPicture() : Component(u"\\admin\\inc\\code") {
  Describe<VerifyPicture>([](Describer<VerifyPicture>& m) {
    m.Block(u"InitFunction1", &VerifyPicture::WriteUnbuffered);
    m.Block(u"NumCode", &VerifyPicture::DrawNewCode);
  });
}

void VerifyPicture::WriteUnbuffered() {
  CurrentResponse().Buffer = false;
  DrawNewCode();
}

void VerifyPicture::DrawNewCode() {
  Guard(u"NumCode", [&] {
    Response& response = CurrentResponse();
    response.SetExpires(-1);
    response.AddHeader(u"Pragma", u"no-cache");
    response.AddHeader(u"cache-ctrol", u"no-cache");
    std::u16string code = NewVerifyCode();
    CurrentSession().Set(u"verifyid", Variant(code));
    Server& server = CurrentServer();
    Bytes body = LoadFile(server.MapPath(u"body.Fix"));
    Bytes head = LoadFile(server.MapPath(u"head.fix"));
    Bytes image = ComposeVerifyImage(head, body, code);
    response.ContentType = u"image/BMP";
    response.BinaryWrite(image);
  });
}

}  // namespace ostrakan::admin
