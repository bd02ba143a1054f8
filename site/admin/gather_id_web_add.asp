<%@ Component="Ostrakan.Class48" %><% InitFunction1 %><% InitFunction2 %><html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=gb2312">
<title>采集信息管理 - 编号采集网站添加</title>
<link rel="stylesheet" href="css/style.css" type="text/css">
<script type="text/javascript">
function check() {
  var f = document.forms['form'].elements;
  if (f['web'].value == '') { alert('请输入网站名称！'); f['web'].focus(); return false; }
  if (f['url'].value == '') { alert('请输入网站网址！'); f['url'].focus(); return false; }
  if (f['gather_url'].value == '') { alert('请输入采集网址！'); f['gather_url'].focus(); return false; }
  if (f['error_html'].value == '') { alert('请输入报错HTML标识！'); f['error_html'].focus(); return false; }
  if (f['title_start'].value == '') { alert('请输入标题开始HTML标识！'); f['title_start'].focus(); return false; }
  if (f['title_end'].value == '') { alert('请输入标题结束HTML标识！'); f['title_end'].focus(); return false; }
  return true;
}
</script>
</head>
<body class="content">
<h3>采集信息管理 - 编号采集网站添加</h3>
<form accept-charset="gb18030" name="form" id="form" method="post" action="gather_id_web_add_ok.asp" onsubmit="return check()">
<table class="form">
<tr><th>网站名称：</th><td><input type="text" name="web" size="30" value=""> *</td></tr>
<tr><th>网站网址：</th><td><input type="text" name="url" size="50" value=""> *<br><span class="hint">网站主域网址，例如：http://www.example.com/</span></td></tr>
<tr><th>采集网址：</th><td><input type="text" name="gather_url" size="70" value=""> *<br><span class="hint">例如：http://www.example.com/html/[id].html<br>注：[id]表示ID编号参数；</span></td></tr>
<tr><th>网页编码：</th><td><select name="charset"><option value="utf-8">Unicode(UTF-8)</option><option value="gb2312">简体中文(GB2312)</option><option value="big5">繁体中文(Big5)</option><option value="iso-8859-1">西欧</option></select></td></tr>
<tr><th>报错标识：</th><td><textarea name="error_html" cols="50" rows="3"></textarea> *<br><span class="hint">1、找不到数据报错HTML代码标识；<br>2、找不到数据才会出现的独特HTML标识； </span></td></tr>
<tr><th>标题开始：</th><td><textarea name="title_start" cols="50" rows="3"></textarea> *<br><span class="hint">标题开始HTML代码标识； </span></td></tr>
<tr><th>标题结束：</th><td><textarea name="title_end" cols="50" rows="3"></textarea> *<br><span class="hint">标题结束HTML代码标识；</span></td></tr>
<tr><th>描述开始：</th><td><textarea name="content_start" cols="50" rows="3"></textarea><br><span class="hint">描述开始HTML代码标识；</span></td></tr>
<tr><th>描述结束：</th><td><textarea name="content_end" cols="50" rows="3"></textarea><br><span class="hint">描述结束HTML代码标识；</span></td></tr>
<tr><th></th><td><input type="submit" value="确定" class="button"> <input type="reset" value="重写" class="button"></td></tr>
</table>
</form>
<div class="help">
<p>采集网站设置说明：</p>
<p>1、把采集网页的源代码标识复制到采集规则中；</p>
<p>2、选择正确的网页编码；</p>
<p>4、一般情况下开始标识字符字数码必须大于结束标识字符数，否则错误；</p>
</div>
<p class="footer">Ostrakan 视频搜索管理系统 &copy; Pellumar</p>
</body>
</html>
