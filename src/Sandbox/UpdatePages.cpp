#include "UpdatePages.h"

namespace corvellan::sandbox {

using namespace Qt::StringLiterals;

QByteArray updateFeed(const QString& version, const QString& downloadUrl) {
    const auto text =
        uR"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
  <channel>
    <title>Corvellan Bram</title>
    <link>%2</link>
    <description>New versions, as the sandbox tells them</description>
    <language>en</language>
    <item>
      <title>Version %1</title>
      <link>%2</link>
      <enclosure url="%2" sparkle:version="%1" sparkle:shortVersionString="%1" length="0" type="application/octet-stream"/>
    </item>
  </channel>
</rss>
)"_s;
    return text.arg(version.toHtmlEscaped(), downloadUrl.toHtmlEscaped()).toUtf8();
}

QByteArray downloadPage(const QString& version) {
    const auto text =
        uR"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Corvellan Bram</title></head>
<body>
<h1>Corvellan Bram %1</h1>
<p>This is the sandbox: there is nothing to download here.</p>
</body>
</html>
)"_s;
    return text.arg(version.toHtmlEscaped()).toUtf8();
}

}  // namespace corvellan::sandbox
