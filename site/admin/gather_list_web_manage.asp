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
<table class="list">
<tr><th>网站名称</th><th>操作</th></tr>
<% InitFunction4 %></table>
</body>
</html>
