<%@ Component="Ostrakan.Class19" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>采集信息管理 - 数据添加</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function check() {
  var f = document.forms['form'].elements;
  if (f['title'].value == '') { alert('请输入标题！'); f['title'].focus(); return false; }
  if (f['content'].value.length > 150) { alert('描述字数超出限制！'); f['content'].focus(); return false; }
  if (f['url'].value == '') { alert('请输入网址！'); f['url'].focus(); return false; }
  if (f['source'].value == '') { alert('请输入来源网站！'); f['source'].focus(); return false; }
  if (f['source_url'].value == '') { alert('请输入来源网站网址！'); f['source_url'].focus(); return false; }
  return true;
}
</script>
</head>
<body class="content">
<h3>采集信息管理 - 数据添加</h3>
<form accept-charset="gb18030" name="form" id="form" method="post" action="db_add_ok.asp" onsubmit="return check()">
<table class="form">
<tr><th>标　　题：</th><td><input type="text" name="title" size="50" maxlength="50" value=""></td></tr>
<tr><th>描　　述：</th><td><textarea name="content" cols="41" rows="5"></textarea> <span class="hint">150字以内</span></td></tr>
<tr><th>网　　址：</th><td>http://<input type="text" name="url" size="41" maxlength="255" value=""></td></tr>
<tr><th>来源网站：</th><td><input type="text" name="source" size="25" maxlength="25" value=""></td></tr>
<tr><th>来源网址：</th><td>http://<input type="text" name="source_url" size="41" maxlength="255" value=""></td></tr>
<tr><th></th><td><input type="submit" value="确定" class="button"> <input type="reset" value="重写" class="button"></td></tr>
</table>
</form>
</body>
</html>
