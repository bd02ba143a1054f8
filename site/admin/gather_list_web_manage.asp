<%@ Component="Ostrakan.Class35" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>列表采集网站管理</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function web_delete(id) {
  if (confirm('确定要删除这个采集网站吗？')) location.href = 'gather_list_web_ok.asp?action=del&id=' + id;
}
</script>
</head>
<body class="content">
<h3>列表采集网站管理 <a href="gather_list_web_add.asp">添加网站</a></h3>
<form accept-charset="gb18030" name="rules" method="post" action="gather_rules_export.asp">
<input type="hidden" name="kind" value="list">
<table class="list">
<tr><th>选择</th><th>网站名称</th><th>操作</th></tr>
<% InitFunction4 %></table>
<p class="batch"><input type="submit" value="导出选中的规则" class="button"></p>
</form>
<form accept-charset="gb18030" name="upload" method="post" action="gather_rules_import.asp?kind=list" enctype="multipart/form-data">
导入规则文件：<input type="file" name="file" accept=".json,application/json"> <input type="submit" value="预览导入" class="button">
</form>
<p class="hint">导出的文件可以在其他站点用“预览导入”或 ostrakan rules import 导入，规则将作为新规则添加。</p>
</body>
</html>
