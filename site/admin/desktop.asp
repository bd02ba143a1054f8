<%@ Component="Ostrakan.Class12" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>管理首页</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<h3>管理首页</h3>
<table class="list">
  <tr><th>管理员</th><td id="admin-name"><% InitFunction3 %></td></tr>
  <tr><th>上次登录地址</th><td id="last-ip"><% InitFunction4 %></td></tr>
  <tr><th>上次登录时间</th><td id="last-time"><% InitFunction5 %></td></tr>
<% InitFunction6 %>
</table>
<p class="hint">欢迎使用 <%= WebSite_Title %> 管理后台。请从左侧菜单选择要管理的项目。</p>
</body>
</html>
