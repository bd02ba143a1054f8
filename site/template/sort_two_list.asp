<!DOCTYPE html>
<html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>[pellumar]sort[/pellumar] - [pellumar]title[/pellumar]</title>
<style type="text/css">
body { margin: 0; font: 13px/1.6 "SimSun", "WenQuanYi Zen Hei", "Microsoft YaHei", sans-serif; color: #333; background: #fafafa; }
a { color: #1a4d8f; text-decoration: none; }
a:hover { color: #c00; text-decoration: underline; }
.top { background: #1a4d8f; color: #fff; padding: 0 20px; height: 44px; line-height: 44px; }
.top a { color: #fff; font-weight: bold; font-size: 16px; }
.top .here { margin-left: 12px; font-size: 14px; }
.main { max-width: 960px; margin: 16px auto; padding: 12px 20px; background: #fff; border: 1px solid #e3e3e3; }
.main h1 { margin: 0 0 12px; font-size: 18px; color: #1a4d8f; border-bottom: 2px solid #1a4d8f; padding-bottom: 4px; }
.foot { text-align: center; color: #999; padding: 12px; }
</style>
</head>
<body>
<div class="top"><a href="../">[pellumar]title[/pellumar]</a><span class="here">&gt;&gt; [pellumar]sort[/pellumar]</span></div>
<div class="main">
<h1>[pellumar]sort[/pellumar]</h1>
[pellumar]db_list[/pellumar]
</div>
<div class="foot"><a href="../">返回首页</a> &nbsp;|&nbsp; [pellumar]title[/pellumar]</div>
</body>
</html>