<%@ Component="Ostrakan.Class18" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>管理登录</title>
</head>
<body>
<% InitFunction3 %>
</body>
</html>
