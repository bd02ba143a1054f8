<!DOCTYPE html>
<html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>[pellumar]keyword[/pellumar] - 搜索 - [pellumar]title[/pellumar]</title>
<style type="text/css">
body { margin: 0; font: 13px/1.6 "SimSun", "WenQuanYi Zen Hei", "Microsoft YaHei", sans-serif; color: #333; background: #fafafa; }
a { color: #1a4d8f; text-decoration: none; }
a:hover { color: #c00; text-decoration: underline; }
.top { background: #1a4d8f; color: #fff; padding: 0 20px; height: 44px; line-height: 44px; }
.top a { color: #fff; font-weight: bold; font-size: 16px; }
.top form { display: inline; margin-left: 24px; }
.top input[type=text] { width: 260px; }
.main { max-width: 960px; margin: 16px auto; padding: 12px 20px; background: #fff; border: 1px solid #e3e3e3; }
.main h2 { margin: 12px 0 8px; font-size: 16px; color: #1a4d8f; border-bottom: 2px solid #1a4d8f; padding-bottom: 4px; }
ul.categories li, ul.keywords li { display: inline-block; margin: 0 14px 4px 0; }
ul { margin: 0; padding: 0 0 0 4px; list-style: none; }
.meta { color: #090; }
.result { margin: 0 0 12px; }
.result .title { font-size: 14px; }
.pager { margin-top: 12px; }
.foot { text-align: center; color: #999; padding: 12px; }
</style>
</head>
<body>
<div class="top"><a href="./">[pellumar]title[/pellumar]</a>
<form action="search.asp" method="get" accept-charset="gb18030"><input type="text" name="keyword" value="[pellumar]keyword[/pellumar]" maxlength="50"> <input type="submit" value="搜索"></form></div>
<div class="main">
[pellumar]db_list[/pellumar]
</div>
<div class="foot"><a href="./">返回首页</a> &nbsp;|&nbsp; [pellumar]title[/pellumar]</div>
</body>
</html>
