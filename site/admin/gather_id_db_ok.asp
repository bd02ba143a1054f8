<%@ Component="Ostrakan.Class53" %><%@ Rule="gather_id_web_list.asp" %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>编号采集</title>
</head>
<body>
<% InitFunction1 %>
</body>
</html>
