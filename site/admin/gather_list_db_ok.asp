<%@ Component="Ostrakan.Class54" Rule="gather_list_web_list.asp" %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>列表采集进行中</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
</head>
<body class="content">
<% InitFunction1 %>
</body>
</html>
