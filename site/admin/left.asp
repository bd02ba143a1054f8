<%@ Component="Ostrakan.Class64" %><% Admin_Session = Setting("Admin_Session") %><% InitFunction1 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<link rel="stylesheet" href="css/admin.css" type="text/css">
</head>
<body class="menu">
<dl>
  <dt>系统管理</dt>
  <dd><a href="desktop.asp" target="main">管理首页</a></dd>
  <dd><a href="admin.asp" target="main">帐号设置</a></dd>
  <dd><a href="login_out.asp" target="_top">退出登录</a></dd>
</dl>
</body>
</html>
