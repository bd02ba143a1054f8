<%@ Component="Ostrakan.Class28" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>数据维护</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function check_url(form) {
  if (form.elements['url'].value == '') { alert('请输入来源网站网址！'); form.elements['url'].focus(); return false; }
  return confirm('确定要删除来自这个网站的全部记录吗？');
}
</script>
</head>
<body class="content">
<h3>数据维护</h3>
<form accept-charset="gb18030" name="del" method="get" action="db_manage_ok.asp" onsubmit="return confirm('确定要删除所有没有标题的记录吗？')">
<input type="hidden" name="action" value="del">
<table class="form">
  <tr><th>清理数据：</th><td><input type="submit" value="删除无标题记录" class="button"> <span class="hint">删除标题为空的无效记录。</span></td></tr>
</table>
</form>
<form accept-charset="gb18030" name="del_url" method="get" action="db_manage_ok.asp" onsubmit="return check_url(this)">
<input type="hidden" name="action" value="del_url">
<table class="form">
  <tr><th>来源网址：</th><td>http://<input type="text" name="url" id="url" size="41" maxlength="255" class="input wide"> <input type="submit" value="删除来源数据" class="button"></td></tr>
</table>
</form>
<p class="hint">删除来源网址以所填地址开头的全部记录，地址前的 http:// 可写可不写。删除后无法恢复。</p>
</body>
</html>
