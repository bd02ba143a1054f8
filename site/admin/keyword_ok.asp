<%@ Component="Ostrakan.Class11" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>关键词管理</title>
</head>
<body>
<% InitFunction3 %>
</body>
</html>
