<%@ Component="Ostrakan.Class13" %><% InitFunction1 %><% InitFunction2 %><% InitFunction3 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>帐号设置</title>
</head>
<body>
<% InitFunction4 %>
</body>
</html>
