<%@ Component="Ostrakan.Class64" %><% Admin_Session = Setting("Admin_Session") %><% InitFunction1 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="top-bar">
<span class="brand"><%= Setting("WebSite_Title") %> 管理后台</span>
<span class="top-links"><a href="desktop.asp" target="main">管理首页</a> | <a href="admin.asp" target="main">帐号设置</a> | <a href="login_out.asp" target="_top">退出登录</a></span>
</body>
</html>
